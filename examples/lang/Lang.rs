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
</rs:data>
</xml>
