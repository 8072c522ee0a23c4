<xml xmlns:s='uuid:BDC6E3F0-6DA3-11d1-A2A3-00AA00C14882'
	xmlns:dt='uuid:C2F41010-65B3-11d1-A29F-00AA00C14882'
	xmlns:rs='urn:schemas-microsoft-com:rowset'
	xmlns:z='#RowsetSchema'>
<s:Schema id='RowsetSchema'>
	<s:ElementType name='row' content='eltOnly' rs:updatable='true'>
		<s:AttributeType name='lId' rs:number='1' rs:nullable='true' rs:write='true'>
			<s:datatype dt:type='int' dt:maxLength='4' rs:precision='10' rs:fixedlength='true'/>
		</s:AttributeType>
		<s:AttributeType name='sId' rs:number='2' rs:nullable='true' rs:write='true'>
			<s:datatype dt:type='int' dt:maxLength='4' rs:precision='10' rs:fixedlength='true'/>
		</s:AttributeType>
		<s:AttributeType name='sText' rs:number='3' rs:nullable='true' rs:write='true'>
			<s:datatype dt:type='string' dt:maxLength='255'/>
		</s:AttributeType>
		<s:extends type='rs:rowbase'/>
	</s:ElementType>
</s:Schema>
<rs:data>
	<z:row lId='0' sId='20' sText="Tahoma"/>
	<z:row lId='0' sId='21' sText="8"/>
	<z:row lId='0' sId='1364' sText="Unvalid Name for File Cube"/>
	<z:row lId='0' sId='1366' sText="Choose a Cube Name and a Cube File"/>
	<z:row lId='0' sId='1473' sText="Select Cube"/>
	<z:row lId='0' sId='1474' sText="Cube Name"/>
	<z:row lId='0' sId='1475' sText="From Date"/>
	<z:row lId='0' sId='1476' sText="To Date"/>
	<z:row lId='0' sId='1477' sText="Measure"/>
	<z:row lId='0' sId='1478' sText="RH"/>
	<z:row lId='0' sId='1479' sText="Firma"/>
	<z:row lId='0' sId='1480' sText="Money Set"/>
	<z:row lId='0' sId='1481' sText="Opening Balance"/>
	<z:row lId='0' sId='1482' sText="Plbs"/>
	<z:row lId='0' sId='1483' sText="Account type"/>
	<z:row lId='0' sId='1484' sText="Summary Group"/>
	<z:row lId='0' sId='1485' sText="Account list"/>
	<z:row lId='0' sId='1486' sText="OBS"/>
	<z:row lId='0' sId='1487' sText="OBS Level"/>
	<z:row lId='0' sId='1488' sText="OBS Data"/>
	<z:row lId='0' sId='1489' sText="Activity List"/>
	<z:row lId='0' sId='1490' sText="Calculate"/>
	<z:row lId='0' sId='1491' sText="OK"/>
	<z:row lId='0' sId='1492' sText="Cancel"/>
	<z:row lId='0' sId='1493' sText="Account Level"/>
	<z:row lId='0' sId='1494' sText="Single cell function"/>
	<z:row lId='0' sId='1499' sText="Choose a cell whose formula calls QelF1 or QelName once."/>
	<z:row lId='0' sId='1500' sText="Function QEL"/>
	<z:row lId='0' sId='1501' sText="Select OBS"/>
	<z:row lId='0' sId='1502' sText="Remove OBS"/>
	<z:row lId='0' sId='1503' sText="Name QEL"/>
	<z:row lId='0' sId='1504' sText="Dimension type"/>
	<z:row lId='0' sId='1505' sText="Name"/>
	<z:row lId='0' sId='1506' sText="Saved queries"/>
	<z:row lId='0' sId='1507' sText="Remove"/>
	<z:row lId='0' sId='1508' sText="All"/>
	<z:row lId='0' sId='1509' sText="Cost centres"/>
	<z:row lId='0' sId='1510' sText="OBS levels"/>
	<z:row lId='0' sId='1511' sText="One function takes at most five OBS members."/>
	<z:row lId='0' sId='1512' sText="This is not a date:"/>
	<z:row lId='0' sId='1513' sText="The From Date is later than the To Date."/>
	<z:row lId='0' sId='1514' sText="The cube has no data between these dates. It has data between:"/>
	<z:row lId='0' sId='1515' sText="The cube no longer has these saved choices:"/>
	<z:row lId='0' sId='1516' sText="Choose an OBS member or the OBS level All."/>
	<z:row lId='0' sId='1517' sText="Choose an account, or clear the box of the account list."/>
	<z:row lId='0' sId='1518' sText="Choose an activity, or clear the box of the activity list."/>
	<z:row lId='0' sId='1519' sText="Choose a summary group."/>
	<z:row lId='0' sId='1520' sText="The value is that of the first member."/>
	<z:row lId='0' sId='1521' sText="The list is used."/>
	<z:row lId='0' sId='1522' sText="This cube does not have these choices:"/>
	<z:row lId='0' sId='1523' sText="OBS Number"/>
	<z:row lId='0' sId='1524' sText="Which level"/>
	<z:row lId='0' sId='1525' sText="Picked OBS"/>
	<z:row lId='0' sId='1526' sText="Activity"/>
	<z:row lId='0' sId='1527' sText="Remove this saved query?"/>
	<z:row lId='0' sId='1528' sText="Cube file"/>
	<z:row lId='0' sId='1529' sText="Value"/>
	<z:row lId='0' sId='1540' sText="Choose a cell whose formula calls QelF1."/>
	<z:row lId='0' sId='1541' sText="The formula gives a name. Only amounts have lines."/>
	<z:row lId='0' sId='1542' sText="These arguments of the formula have no value that it takes:"/>
	<z:row lId='0' sId='1543' sText="The formula has no value:"/>
	<z:row lId='0' sId='1544' sText="There is no such cube file:"/>
	<z:row lId='0' sId='1545' sText="The value adds up no lines."/>
	<z:row lId='0' sId='1546' sText="This sheet or document is protected, or opened to be read only."/>
	<z:row lId='0' sId='1547' sText="Lines behind"/>
	<z:row lId='0' sId='1548' sText="Lines"/>
	<z:row lId='0' sId='1549' sText="of"/>
	<z:row lId='0' sId='1550' sText="more"/>
	<z:row lId='0' sId='1551' sText="The total is of these lines only."/>
	<z:row lId='0' sId='1552' sText="The lines do not add up to the value."/>
	<z:row lId='0' sId='1553' sText="Total"/>
	<z:row lId='0' sId='1554' sText="Reading lines (Esc stops)"/>
	<z:row lId='0' sId='1555' sText="The formula calls QelF1 several times. Which lines?"/>
	<z:row lId='0' sId='1556' sText="Lines behind this cell"/>
	<z:row lId='0' sId='1557' sText="Waiting for this server."/>
	<z:row lId='0' sId='1558' sText="Cancel"/>
	<z:row lId='0' sId='1600' sText="; did you mean {0}?"/>
	<z:row lId='0' sId='1601' sText="; it has {0}"/>
	<z:row lId='0' sId='1602' sText="; it has {0} and {1} more"/>
	<z:row lId='0' sId='1603' sText='{0} has no member "{1}"'/>
	<z:row lId='0' sId='1604' sText='{0} has no level "{1}"'/>
	<z:row lId='0' sId='1605' sText='{0}.[{1}] has no member "{2}", but [{3}] has one; set {4} to "{3}"'/>
	<z:row lId='0' sId='1606' sText="the cube has no dimension [{0}]"/>
	<z:row lId='0' sId='1607' sText='no key; write it in braces, {{"OBS"}}, or as a reference to a cell'/>
	<z:row lId='0' sId='1608' sText="the formula has {0} of {1} arguments, so To_Date is omitted; if an earlier one is missing, those behind it stand one place too far to the left"/>
	<z:row lId='0' sId='1609' sText="To_Date is omitted"/>
	<z:row lId='0' sId='1610' sText="From_Date, {0}, is later than To_Date, {1}"/>
	<z:row lId='0' sId='1611' sText="the cube has no periods"/>
	<z:row lId='0' sId='1612' sText="the dates end before the cube's first period starts, on {0}"/>
	<z:row lId='0' sId='1613' sText="the dates lie behind the cube's last period, which starts on {0}"/>
	<z:row lId='0' sId='1614' sText="without From_Date, a To_Date behind the first day of the cube's last period selects nothing; set To_Date or From_Date to &quot;{0}&quot;"/>
	<z:row lId='0' sId='1615' sText="From_Date lies behind the first day of the cube's last period; set it to &quot;{0}&quot;"/>
	<z:row lId='0' sId='1616' sText='{0} "{1}" is read as {2}, because there is no month {3}'/>
	<z:row lId='0' sId='1617' sText="one, {0}"/>
	<z:row lId='0' sId='1618' sText="{0}, from {1} to {2}"/>
	<z:row lId='0' sId='1619' sText="a period counts, the whole of it, when its first day lies within From_Date and To_Date"/>
	<z:row lId='0' sId='1620' sText="without From_Date, the period of To_Date counts alone"/>
	<z:row lId='0' sId='1621' sText="no period starts within the dates, so the period of To_Date counts, the whole of it"/>
	<z:row lId='0' sId='1622' sText="{0} is left out, because it starts before From_Date"/>
	<z:row lId='0' sId='1623' sText='{0} "{1}" is ignored, because {2} is "All"'/>
	<z:row lId='0' sId='1624' sText='without {0} "{1}" it is {2}'/>
	<z:row lId='0' sId='1625' sText="without these dates it is {0}"/>
	<z:row lId='0' sId='1626' sText="no amount has all of these together, nor with any one of them left out"/>
	<z:row lId='0' sId='1627' sText="only the first key of {0} is used"/>
	<z:row lId='0' sId='1628' sText="{0}"/>
	<z:row lId='0' sId='1629' sText="no statement was sent: the dates lie outside the cube's, {0} to {1}"/>
	<z:row lId='0' sId='1630' sText="the cube is of an outdated layout; build it again"/>
	<z:row lId='0' sId='1631' sText="there is no file {0}"/>
	<z:row lId='0' sId='1632' sText="everything"/>
	<z:row lId='0' sId='1633' sText='"{0}", not in the cube'/>
	<z:row lId='0' sId='1634' sText="Reason: {0}"/>
	<z:row lId='0' sId='1635' sText="Hidden error: {0}"/>
	<z:row lId='0' sId='1636' sText="Periods: {0}"/>
	<z:row lId='0' sId='1637' sText="Rule: {0}"/>
	<z:row lId='0' sId='1638' sText="Note: {0}"/>
	<z:row lId='0' sId='1639' sText="Lines: {0}"/>
	<z:row lId='0' sId='1640' sText="Time: {0} ms, {1} ms of it to open the cube"/>
	<z:row lId='0' sId='1641' sText="No statement was sent."/>
	<z:row lId='0' sId='1642' sText="Here {0}, there {1}, difference {2}"/>
	<z:row lId='0' sId='1643' sText="Here {0}, there {1}"/>
	<z:row lId='0' sId='1650' sText="Why this value"/>
	<z:row lId='0' sId='1651' sText="Arguments"/>
	<z:row lId='0' sId='1652' sText="Explanation"/>
	<z:row lId='0' sId='1653' sText="Statement"/>
	<z:row lId='0' sId='1654' sText="Compare with…"/>
	<z:row lId='0' sId='1655' sText="Comparison"/>
	<z:row lId='0' sId='1656' sText="Edit formula"/>
	<z:row lId='0' sId='1657' sText="Copy"/>
	<z:row lId='0' sId='1658' sText="Close"/>
	<z:row lId='0' sId='1659' sText="The formula has several calls. Which one?"/>
	<z:row lId='0' sId='1660' sText="Choose a cell whose formula calls QelF1 or QelName."/>
	<z:row lId='0' sId='1670' sText="Check this sheet"/>
	<z:row lId='0' sId='1671' sText="All sheets"/>
	<z:row lId='0' sId='1672' sText="Check again"/>
	<z:row lId='0' sId='1673' sText="Checking formulas (Esc stops)"/>
	<z:row lId='0' sId='1674' sText="Formulas: {0}. To be looked at: {1}."/>
	<z:row lId='0' sId='1675' sText="Formulas: {0}. To be looked at: {1}; the first {2} are listed."/>
	<z:row lId='0' sId='1676' sText="(hidden sheet)"/>
	<z:row lId='1' sId='20' sText="Tahoma"/>
	<z:row lId='1' sId='21' sText="9"/>
	<z:row lId='1' sId='1364' sText="שם לא תקין לקובץ קוביה"/>
	<z:row lId='1' sId='1366' sText="יש לבחור שם קוביה וקובץ קוביה"/>
	<z:row lId='1' sId='1473' sText="בחירת קוביה"/>
	<z:row lId='1' sId='1474' sText="שם קוביה"/>
	<z:row lId='1' sId='1475' sText="מתאריך"/>
	<z:row lId='1' sId='1476' sText="עד תאריך"/>
	<z:row lId='1' sId='1477' sText="מדד"/>
	<z:row lId='1' sId='1478' sText="RH"/>
	<z:row lId='1' sId='1479' sText="פירמה"/>
	<z:row lId='1' sId='1480' sText="סידרת כסף"/>
	<z:row lId='1' sId='1481' sText="יתרת פתיחה"/>
	<z:row lId='1' sId='1482' sText="פ/ת/ה/תכ"/>
	<z:row lId='1' sId='1483' sText="סוג חשבון"/>
	<z:row lId='1' sId='1484' sText="סעיף מרמה"/>
	<z:row lId='1' sId='1485' sText="רשימת חשבונות"/>
	<z:row lId='1' sId='1486' sText="OBS"/>
	<z:row lId='1' sId='1487' sText="רמת OBS"/>
	<z:row lId='1' sId='1488' sText="נתוני OBS"/>
	<z:row lId='1' sId='1489' sText="רשימת פעילויות"/>
	<z:row lId='1' sId='1490' sText="חישוב"/>
	<z:row lId='1' sId='1491' sText="אישור"/>
	<z:row lId='1' sId='1492' sText="ביטול"/>
	<z:row lId='1' sId='1493' sText="סעיפים"/>
	<z:row lId='1' sId='1494' sText="פונקציה לתא בודד"/>
	<z:row lId='1' sId='1499' sText="יש לבחור תא שהנוסחה שלו קוראת פעם אחת ל-QelF1 או ל-QelName."/>
	<z:row lId='1' sId='1500' sText="פונקציית QEL"/>
	<z:row lId='1' sId='1501' sText="הוספת OBS"/>
	<z:row lId='1' sId='1502' sText="הסרת OBS"/>
	<z:row lId='1' sId='1503' sText="שם QEL"/>
	<z:row lId='1' sId='1504' sText="סוג ממד"/>
	<z:row lId='1' sId='1505' sText="שם"/>
	<z:row lId='1' sId='1506' sText="שאילתות שמורות"/>
	<z:row lId='1' sId='1507' sText="הסרה"/>
	<z:row lId='1' sId='1508' sText="הכל"/>
	<z:row lId='1' sId='1509' sText="מרכזי עלות"/>
	<z:row lId='1' sId='1510' sText="רמות OBS"/>
	<z:row lId='1' sId='1511' sText="פונקציה אחת מקבלת חמישה איברי OBS לכל היותר."/>
	<z:row lId='1' sId='1512' sText="זה אינו תאריך:"/>
	<z:row lId='1' sId='1513' sText="התאריך ההתחלתי מאוחר מתאריך הסיום."/>
	<z:row lId='1' sId='1514' sText="אין בקוביה נתונים בין התאריכים האלה. יש בה נתונים בין:"/>
	<z:row lId='1' sId='1515' sText="הבחירות השמורות האלה כבר אינן בקוביה:"/>
	<z:row lId='1' sId='1516' sText="יש לבחור איבר OBS או את הרמה הכל."/>
	<z:row lId='1' sId='1517' sText="יש לבחור חשבון או לבטל את הסימון של רשימת החשבונות."/>
	<z:row lId='1' sId='1518' sText="יש לבחור פעילות או לבטל את הסימון של רשימת הפעילויות."/>
	<z:row lId='1' sId='1519' sText="יש לבחור סעיף מרמה."/>
	<z:row lId='1' sId='1520' sText="הערך הוא של האיבר הראשון."/>
	<z:row lId='1' sId='1521' sText="הרשימה קובעת."/>
	<z:row lId='1' sId='1522' sText="הבחירות האלה אינן בקוביה הזאת:"/>
	<z:row lId='1' sId='1523' sText="מספר OBS"/>
	<z:row lId='1' sId='1524' sText="איזו רמה"/>
	<z:row lId='1' sId='1525' sText="פריטים שנבחרו"/>
	<z:row lId='1' sId='1526' sText="פעילות"/>
	<z:row lId='1' sId='1527' sText="להסיר את השאילתה השמורה הזאת?"/>
	<z:row lId='1' sId='1528' sText="קובץ קוביה"/>
	<z:row lId='1' sId='1529' sText="ערך"/>
	<z:row lId='1' sId='1540' sText="יש לבחור תא שהנוסחה שלו קוראת ל-QelF1."/>
	<z:row lId='1' sId='1541' sText="הנוסחה מחזירה שם. רק לסכומים יש שורות."/>
	<z:row lId='1' sId='1542' sText="לארגומנטים האלה של הנוסחה אין ערך מתאים:"/>
	<z:row lId='1' sId='1543' sText="לנוסחה אין ערך:"/>
	<z:row lId='1' sId='1544' sText="אין קובץ קוביה כזה:"/>
	<z:row lId='1' sId='1545' sText="אין שורות מאחורי הערך הזה."/>
	<z:row lId='1' sId='1546' sText="הגיליון או המסמך מוגנים או פתוחים לקריאה בלבד."/>
	<z:row lId='1' sId='1547' sText="השורות מאחורי"/>
	<z:row lId='1' sId='1548' sText="שורות"/>
	<z:row lId='1' sId='1549' sText="מתוך"/>
	<z:row lId='1' sId='1550' sText="יותר"/>
	<z:row lId='1' sId='1551' sText="הסיכום הוא של השורות האלה בלבד."/>
	<z:row lId='1' sId='1552' sText="השורות אינן מסתכמות לערך."/>
	<z:row lId='1' sId='1553' sText="סיכום"/>
	<z:row lId='1' sId='1554' sText="קריאת שורות (Esc לעצירה)"/>
	<z:row lId='1' sId='1555' sText="הנוסחה קוראת ל-QelF1 כמה פעמים. אילו שורות?"/>
	<z:row lId='1' sId='1556' sText="השורות מאחורי התא"/>
	<z:row lId='1' sId='1557' sText="ממתינים לשרת הזה."/>
	<z:row lId='1' sId='1558' sText="ביטול"/>
	<z:row lId='1' sId='1600' sText="; האם הכוונה ל-{0}?"/>
	<z:row lId='1' sId='1601' sText="; יש בו {0}"/>
	<z:row lId='1' sId='1602' sText="; יש בו {0} ועוד {1}"/>
	<z:row lId='1' sId='1603' sText='אין ב-{0} איבר "{1}"'/>
	<z:row lId='1' sId='1604' sText='אין ב-{0} רמה "{1}"'/>
	<z:row lId='1' sId='1605' sText='אין ב-{0}.[{1}] איבר "{2}", אבל יש ב-[{3}]; יש לכתוב "{3}" ב-{4}'/>
	<z:row lId='1' sId='1606' sText="אין בקוביה ממד [{0}]"/>
	<z:row lId='1' sId='1607' sText='אין מפתח; יש לכתוב אותו בסוגריים מסולסלים, {{"OBS"}}, או כהפניה לתא'/>
	<z:row lId='1' sId='1608' sText="בנוסחה {0} ארגומנטים מתוך {1}, ולכן To_Date חסר; אם חסר ארגומנט לפניו, אלה שאחריו זזו מקום אחד"/>
	<z:row lId='1' sId='1609' sText="To_Date חסר"/>
	<z:row lId='1' sId='1610' sText="From_Date, {0}, מאוחר מ-To_Date, {1}"/>
	<z:row lId='1' sId='1611' sText="אין בקוביה תקופות"/>
	<z:row lId='1' sId='1612' sText="התאריכים מסתיימים לפני תחילת התקופה הראשונה בקוביה, {0}"/>
	<z:row lId='1' sId='1613' sText="התאריכים מאוחרים מהתקופה האחרונה בקוביה, שמתחילה {0}"/>
	<z:row lId='1' sId='1614' sText='בלי From_Date, To_Date שאחרי היום הראשון של התקופה האחרונה בקוביה אינו בוחר דבר; יש לכתוב "{0}" ב-To_Date או ב-From_Date'/>
	<z:row lId='1' sId='1615' sText='From_Date מאוחר מהיום הראשון של התקופה האחרונה בקוביה; יש לכתוב בו "{0}"'/>
	<z:row lId='1' sId='1616' sText='{0} "{1}" נקרא {2}, כי אין חודש {3}'/>
	<z:row lId='1' sId='1617' sText="אחת, {0}"/>
	<z:row lId='1' sId='1618' sText="{0}, מ-{1} עד {2}"/>
	<z:row lId='1' sId='1619' sText="תקופה נספרת במלואה כשהיום הראשון שלה בין From_Date ל-To_Date"/>
	<z:row lId='1' sId='1620' sText="בלי From_Date נספרת רק התקופה של To_Date"/>
	<z:row lId='1' sId='1621' sText="אף תקופה אינה מתחילה בין התאריכים, ולכן נספרת התקופה של To_Date במלואה"/>
	<z:row lId='1' sId='1622' sText="{0} אינה נספרת, כי היא מתחילה לפני From_Date"/>
	<z:row lId='1' sId='1623' sText='{0} "{1}" אינו משפיע, כי {2} הוא "All"'/>
	<z:row lId='1' sId='1624' sText='בלי {0} "{1}" הערך הוא {2}'/>
	<z:row lId='1' sId='1625' sText="בלי התאריכים האלה הערך הוא {0}"/>
	<z:row lId='1' sId='1626' sText="אין סכום שיש לו את כל אלה יחד, וגם לא בלי אחד מהם"/>
	<z:row lId='1' sId='1627' sText="רק המפתח הראשון של {0} משפיע"/>
	<z:row lId='1' sId='1628' sText="{0}"/>
	<z:row lId='1' sId='1629' sText="לא נשלחה שאילתה: התאריכים מחוץ לתאריכי הקוביה, {0} עד {1}"/>
	<z:row lId='1' sId='1630' sText="הקוביה במבנה ישן; יש לבנות אותה מחדש"/>
	<z:row lId='1' sId='1631' sText="אין קובץ {0}"/>
	<z:row lId='1' sId='1632' sText="הכל"/>
	<z:row lId='1' sId='1633' sText='"{0}", אינו בקוביה'/>
	<z:row lId='1' sId='1634' sText="סיבה: {0}"/>
	<z:row lId='1' sId='1635' sText="שגיאה מוסתרת: {0}"/>
	<z:row lId='1' sId='1636' sText="תקופות: {0}"/>
	<z:row lId='1' sId='1637' sText="כלל: {0}"/>
	<z:row lId='1' sId='1638' sText="הערה: {0}"/>
	<z:row lId='1' sId='1639' sText="שורות: {0}"/>
	<z:row lId='1' sId='1640' sText="זמן: {0} אלפיות שנייה, מהן {1} לפתיחת הקוביה"/>
	<z:row lId='1' sId='1641' sText="לא נשלחה שאילתה."/>
	<z:row lId='1' sId='1642' sText="כאן {0}, שם {1}, הפרש {2}"/>
	<z:row lId='1' sId='1643' sText="כאן {0}, שם {1}"/>
	<z:row lId='1' sId='1650' sText="מדוע הערך הזה"/>
	<z:row lId='1' sId='1651' sText="ארגומנטים"/>
	<z:row lId='1' sId='1652' sText="הסבר"/>
	<z:row lId='1' sId='1653' sText="שאילתה"/>
	<z:row lId='1' sId='1654' sText="השוואה עם…"/>
	<z:row lId='1' sId='1655' sText="השוואה"/>
	<z:row lId='1' sId='1656' sText="עריכת הנוסחה"/>
	<z:row lId='1' sId='1657' sText="העתקה"/>
	<z:row lId='1' sId='1658' sText="סגירה"/>
	<z:row lId='1' sId='1659' sText="בנוסחה כמה קריאות. איזו מהן?"/>
	<z:row lId='1' sId='1660' sText="יש לבחור תא שהנוסחה שלו קוראת ל-QelF1 או ל-QelName."/>
	<z:row lId='1' sId='1670' sText="בדיקת הגיליון"/>
	<z:row lId='1' sId='1671' sText="כל הגיליונות"/>
	<z:row lId='1' sId='1672' sText="בדיקה נוספת"/>
	<z:row lId='1' sId='1673' sText="בדיקת נוסחאות (Esc לעצירה)"/>
	<z:row lId='1' sId='1674' sText="נוסחאות: {0}. דורשות בדיקה: {1}."/>
	<z:row lId='1' sId='1675' sText="נוסחאות: {0}. דורשות בדיקה: {1}; מוצגות {2} הראשונות."/>
	<z:row lId='1' sId='1676' sText="(גיליון מוסתר)"/>
</rs:data>
</xml>
