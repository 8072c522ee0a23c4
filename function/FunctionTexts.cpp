#include "function/FunctionTexts.h"

#include "text/CaseFold.h"

#include <algorithm>
#include <array>

namespace qel {

namespace {

constexpr ArgumentTexts cubeFileText = {
    {"cubeFile", "קובץ קוביה"},
    {"The path of the cube file; a relative one counts from this document's folder, then from the current "
     "one.",
     "נתיב קובץ הקוביה; נתיב יחסי נמדד מתיקיית המסמך, ואם אין בה קובץ כזה - מהתיקייה הנוכחית."}};
constexpr ArgumentTexts cubeNameText = {{"CubeName", "שם קוביה"},
                                        {"The cube in the file.", "שם הקוביה שבקובץ."}};

constexpr std::array argumentsOfValues = {
    cubeFileText,
    cubeNameText,
    ArgumentTexts{{"ObsName", "שם OBS"},
                  {"The OBS structure, such as {\"OBS\"} or a cell that holds its name.",
                   "מבנה ה-OBS, כגון {\"OBS\"} או תא שמכיל את שמו."}},
    ArgumentTexts{
        {"ObsNum", "מספר OBS"},
        {"The number of the OBS structure, such as {\"1\"} or 1.", "מספר מבנה ה-OBS, כגון {\"1\"} או 1."}},
    ArgumentTexts{{"ObsLevel", "רמת OBS"},
                  {"{\"All\"}, a level of the OBS, or {\"Cost_Centers\"}.",
                   "{\"All\"} לכולן, רמה של ה-OBS, או {\"Cost_Centers\"} למרכזי עלות."}},
    ArgumentTexts{{"ObsMember", "נתון OBS"},
                  {"The member of that level, or {\"All\"}; only the first of several counts.",
                   "הנתון ברמה זו, או {\"All\"}; מכמה נתונים נחשב הראשון בלבד."}},
    ArgumentTexts{{"ActivityList", "פעילות"},
                  {"The code of an activity, or {\"All\"}; only the first of several counts.",
                   "קוד פעילות, או {\"All\"}; מכמה קודים נחשב הראשון בלבד."}},
    ArgumentTexts{{"Summary_Group", "סעיף מרמה"},
                  {"\"All\", or a level of summary groups: \"SuperSum1\", \"SuperSum2\" or \"SuperSum3\".",
                   "\"All\" לכולם, או רמת סעיפים: \"SuperSum1\",‏ \"SuperSum2\" או "
                   "\"SuperSum3\"."}},
    ArgumentTexts{{"Seif_level", "קוד סעיף"},
                  {"The code of a summary group of that level.", "קוד הסעיף ברמה זו."}},
    ArgumentTexts{{"Accounts", "חשבון"},
                  {"The code of an account, or \"All\".", "קוד חשבון, או \"All\" לכל החשבונות."}},
    ArgumentTexts{{"Measure", "מדד"}, {"The name of the measure.", "שם המדד."}},
    ArgumentTexts{{"MoneySet", "סידרת כסף"}, {"A money set, or \"All\".", "סידרת כסף, או \"All\" לכולן."}},
    ArgumentTexts{{"Plbs", "פ/ת/ה/תכ"},
                  {"A kind of account, such as profit and loss or balance sheet, or \"All\".",
                   "סוג החשבונות, כגון רווח והפסד או מאזן, או \"All\" לכולם."}},
    ArgumentTexts{{"RH", "RH"}, {"A member of RH, or \"All\".", "ערך RH, או \"All\" לכולם."}},
    ArgumentTexts{{"Firma", "פירמה"}, {"The code of a firm, or \"All\".", "קוד פירמה, או \"All\" לכולן."}},
    ArgumentTexts{{"Opening_Balance", "יתרת פתיחה"},
                  {"A member of the opening balance, or \"All\".", "ערך יתרת פתיחה, או \"All\" לכולם."}},
    ArgumentTexts{{"From_Date", "מתאריך"},
                  {"The first day of the periods to add up; without it the period of To_Date alone.",
                   "היום הראשון של התקופות שיסוכמו; בלעדיו - התקופה של \"עד תאריך\" בלבד."}},
    ArgumentTexts{{"To_Date", "עד תאריך"},
                  {"The last day of the periods to add up.", "היום האחרון של התקופות שיסוכמו."}}};

constexpr std::array argumentsOfNames = {
    cubeFileText, cubeNameText,
    ArgumentTexts{{"DimType", "סוג סעיף"},
                  {"The level of summary groups: \"SuperSum1\", \"SuperSum2\" or \"SuperSum3\".",
                   "רמת הסעיפים: \"SuperSum1\",‏ \"SuperSum2\" או \"SuperSum3\"."}},
    ArgumentTexts{{"DimMember", "קוד סעיף"},
                  {"The code of the summary group; a text longer than three characters that is no number is "
                   "taken to be a name already.",
                   "קוד הסעיף; טקסט ארוך משלושה תווים שאינו מספר נחשב לשם עצמו."}}};

constexpr Bilingual valueHelp = {
    "The amount that a cube of ledger lines holds for the selected members and periods.",
    "הסכום שבקוביית תנועות החשבונות לנתונים ולתקופות שנבחרו."};
constexpr Bilingual nameHelp = {"The name of a summary group; \"-\" when there is none.",
                                "שם הסעיף; \"-\" כשאין סעיף כזה."};

constexpr std::array functions = {
    FunctionTexts{"QelF1", "OrmFunctionQel4.OrmQelFunction.QelF1", valueHelp, argumentsOfValues},
    FunctionTexts{"QeL1", "OrmFunctionQel4.OrmQelFunction.QeL1", valueHelp, argumentsOfValues},
    FunctionTexts{"QelName", "OrmFunctionQel4.OrmQelFunction.QelName", nameHelp, argumentsOfNames},
    FunctionTexts{"RetQelName", "OrmFunctionQel4.OrmQelFunction.RetQelName", nameHelp, argumentsOfNames}};

template <class Matches>
const FunctionTexts* Find(const Matches& matches) {
    const auto* const found = std::find_if(functions.begin(), functions.end(), matches);
    return found == functions.end() ? nullptr : found;
}

} // namespace

const Bilingual categoryName = {"Add-In", "תוספת"};

std::string ValueArgumentName(std::size_t argument, bool isHebrew) {
    return argumentsOfValues.at(argument).name.In(isHebrew);
}

const FunctionTexts* FindByMethod(std::string_view method) {
    return Find([&](const FunctionTexts& texts) { return texts.method == method; });
}

const FunctionTexts* FindByFullName(std::string_view fullName) {
    return Find([&](const FunctionTexts& texts) { return EqualIgnoringCase(texts.fullName, fullName); });
}

} // namespace qel
