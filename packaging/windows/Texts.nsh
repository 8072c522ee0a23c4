; What the installer says, in both languages.

!macro Text name english hebrew
    LangString ${name} ${LANG_ENGLISH} "${english}"
    LangString ${name} ${LANG_HEBREW} "${hebrew}"
!macroend

!macro Texts
    !insertmacro Text ProgramsTitle "Add-in, qel, documentation, example" "תוסף, qel, תיעוד, דוגמה"
    !insertmacro Text SearchPathTitle "qel in every command prompt (PATH)" "הפקודה qel בכל שורת פקודה (PATH)"
    !insertmacro Text DocumentationTitle "Documentation" "תיעוד"
    !insertmacro Text ExampleTitle "Example report" "דוח לדוגמה"
    !insertmacro Text EarlierVersionStays "The version that is installed cannot be removed. Close the programs that use it and try again." \
        "לא ניתן להסיר את הגרסה המותקנת. סגרו את התוכניות שמשתמשות בה ונסו שוב."
    !insertmacro Text CannotWrite "Files cannot be written to this folder. Choose another one, or install as an administrator." \
        "לא ניתן לכתוב קבצים בתיקייה זו. בחרו תיקייה אחרת, או התקינו כמנהל מערכת."
    !insertmacro Text NotRegistered "Windows did not take the registration of" "Windows לא קיבל את הרישום של"
    !insertmacro Text RestartExcel "Excel is open and goes on with the version that it has loaded. Restart Excel to use the new one." \
        "Excel פתוח וממשיך עם הגרסה שטען. הפעילו את Excel מחדש כדי להשתמש בגרסה החדשה."
    !insertmacro Text SearchPathTooLong "PATH is too long to be changed here. If you want qel in every command prompt, add this folder yourself:" \
        "PATH ארוך מכדי לשנות אותו כאן. כדי שהפקודה qel תהיה בכל שורת פקודה, הוסיפו בעצמכם את התיקייה:"
    !insertmacro Text SearchPathStays "PATH is too long to be changed here. Remove this folder from it yourself:" \
        "PATH ארוך מכדי לשנות אותו כאן. הסירו ממנו בעצמכם את התיקייה:"
    !insertmacro Text StartExcel "Start Excel: its formulas know the functions, and the tab Qel has the wizards. If Excel was open during the installation, close it and run this program again, because Excel may have lost the add-in.$\r$\n$\r$\nThe example report and the documentation are in the Start menu." \
        "הפעילו את Excel: הנוסחאות מכירות את הפונקציות, ובכרטיסייה Qel נמצאים האשפים. אם Excel היה פתוח בזמן ההתקנה, סגרו אותו והפעילו תוכנית זו שוב, כי ייתכן ש-Excel איבד את התוסף.$\r$\n$\r$\nהדוח לדוגמה והתיעוד נמצאים בתפריט התחלה."
    !insertmacro Text ChooseInExcel "One step is left for each user. In Excel, open File > Options > Add-ins > Manage: Excel Add-ins > Go > Automation, choose OrmFunctionQel4.OrmQelFunction and press OK.$\r$\n$\r$\nThe example report and the documentation are in the Start menu." \
        "נותר צעד אחד לכל משתמש. ב-Excel פתחו קובץ > אפשרויות > תוספות > ניהול: תוספות Excel > ביצוע > אוטומציה, בחרו OrmFunctionQel4.OrmQelFunction ולחצו על אישור.$\r$\n$\r$\nהדוח לדוגמה והתיעוד נמצאים בתפריט התחלה."
!macroend
