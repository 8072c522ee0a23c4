#include "examples/ledger/Organisation.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

namespace qel::ledger {
namespace {

constexpr NamedCode firms[] = {
    {"10", "Arava Trading Ltd", "ערבה סחר בע\"מ"},
    {"20", "Arava Stores Ltd", "ערבה חנויות בע\"מ"},
    {"30", "Arava Holdings & Services Ltd", "ערבה אחזקות ושירותים בע\"מ"},
};

constexpr NamedCode regions[] = {
    {"1", "North", "צפון"},
    {"2", "Centre", "מרכז"},
    {"3", "South & Negev", "דרום ונגב"},
    {"4", "Head office", "הנהלה ראשית"},
};

constexpr NamedCode unitKinds[] = {
    {"1", "Stores", "חנויות"},
    {"2", "Warehouses", "מחסנים"},
    {"3", "Administration", "מינהלה"},
    {"4", "Online", "אונליין"},
};

constexpr Site sites[] = {
    {"111", "Haifa", "חיפה", "20", SiteUse::Store, 330'000},
    {"112", "Karmi'el", "כרמיאל", "20", SiteUse::Store, 180'000},
    {"113", "Afula \"Big\"", "עפולה \"ביג\"", "20", SiteUse::Store, 210'000},
    {"114", "נהריה (outlet)", "נהריה (עודפים)", "20", SiteUse::Store, 150'000},
    {"121", "Tirat Carmel [bonded]", "טירת כרמל [ערובה]", "10", SiteUse::Warehouse, 0},
    {"131", "Office", "משרד", "20", SiteUse::Office, 0},
    {"211", "Tel Aviv", "תל אביב", "20", SiteUse::Store, 470'000},
    {"212", "Ramat Gan", "רמת גן", "20", SiteUse::Store, 390'000},
    {"213", "Petah Tikva", "פתח תקווה", "20", SiteUse::Store, 260'000},
    {"214", "Rishon & Holon", "ראשון וחולון", "20", SiteUse::Store, 310'000},
    {"215", "Kfar Sava", "כפר סבא", "20", SiteUse::Store, 240'000},
    {"221", "Lod [A]", "לוד [א]", "10", SiteUse::Warehouse, 0},
    {"222", "Lod [B]", "לוד [ב]", "10", SiteUse::Warehouse, 0},
    {"231", "Office", "משרד", "10", SiteUse::Office, 0},
    {"311", "Be'er Sheva", "באר שבע", "20", SiteUse::Store, 280'000},
    {"312", "Ashdod", "אשדוד", "20", SiteUse::Store, 220'000},
    {"313", "Eilat, \"no VAT\"", "אילת, \"ללא מע''מ\"", "20", SiteUse::Store, 200'000},
    {"321", "Ashdod port", "נמל אשדוד", "10", SiteUse::Warehouse, 0},
    {"331", "Office", "משרד", "20", SiteUse::Office, 0},
    {"431", "Management", "הנהלה", "30", SiteUse::Office, 0},
    {"432", "Finance", "כספים", "30", SiteUse::Office, 0},
    {"441", "Web shop", "חנות מקוונת", "20", SiteUse::WebShop, 520'000},
};

constexpr CostCentre costCentres[] = {
    {"1110", "Haifa, sales floor", "חיפה, רצפת מכירה", "111", 41'000},
    {"1111", "Haifa, back room", "חיפה, מחסן", "111", 12'500},
    {"1120", "Karmi'el", "כרמיאל", "112", 27'000},
    {"1130", "Afula \"Big\"", "עפולה \"ביג\"", "113", 29'500},
    {"1140", "Nahariyya outlet", "נהריה עודפים", "114", 21'000},
    {"1210", "Tirat Carmel, dock [1]", "טירת כרמל, רציף [1]", "121", 34'000},
    {"1211", "Tirat Carmel, customs", "טירת כרמל, מכס", "121", 16'000},
    {"1310", "Northern office", "משרד צפון", "131", 31'000},
    {"2110", "Tel Aviv, ground floor", "תל אביב, קומת קרקע", "211", 48'000},
    {"2111", "Tel Aviv, gallery", "תל אביב, גלריה", "211", 22'500},
    {"2112", "Tel Aviv, back room", "תל אביב, מחסן", "211", 14'000},
    {"2120", "Ramat Gan", "רמת גן", "212", 46'000},
    {"2121", "Ramat Gan, café", "רמת גן, קפה", "212", 13'000},
    {"2130", "Petah Tikva", "פתח תקווה", "213", 36'500},
    {"2140", "Rishon", "ראשון", "214", 24'000},
    {"2141", "Holon", "חולון", "214", 19'500},
    {"2150", "Kfar\u00A0Sava", "כפר\u00A0סבא", "215", 33'000},
    {"2210", "Lod [A], receiving", "לוד [א], קבלה", "221", 37'000},
    {"2211", "Lod [A], picking", "לוד [א], ליקוט", "221", 44'000},
    {"2220", "Lod [B], furniture", "לוד [ב], רהיטים", "222", 39'000},
    {"2221", "Lod [B], returns", "לוד [ב], החזרות", "222", 15'000},
    {"2310", "Wholesale, sales desk", "סיטונאות, מכירות", "231", 58'000},
    {"2311", "Wholesale, purchasing", "סיטונאות, רכש", "231", 49'000},
    {"2312", "Wholesale, key accounts", "סיטונאות, לקוחות גדולים", "231", 42'000},
    {"3110", "Be'er Sheva", "באר שבע", "311", 38'000},
    {"3111", "Be'er Sheva, kiosk '2'", "באר שבע, דוכן '2'", "311", 9'500},
    {"3120", "Ashdod", "אשדוד", "312", 30'000},
    {"3130", "Eilat", "אילת", "313", 26'000},
    {"3210", "Ashdod port, import", "נמל אשדוד, יבוא", "321", 28'000},
    {"3310", "Southern office", "משרד דרום", "331", 24'000},
    {"4310", "Board & management", "דירקטוריון והנהלה", "431", 76'000},
    {"4311", "Legal", "לשכה משפטית", "431", 33'000},
    {"4312", "Human resources", "משאבי אנוש", "431", 37'500},
    {"4320", "Accounting", "הנהלת חשבונות", "432", 61'000},
    {"4321", "Payroll", "שכר", "432", 24'500},
    {"4322", "Information systems", "מערכות מידע", "432", 68'000},
    {"44'1", "Web shop, content", "חנות מקוונת, תוכן", "441", 29'000},
    {"44&2", "Web shop, packing & post", "חנות מקוונת, אריזה ודואר", "441", 31'000},
    {"4413", "Call centre", "מוקד טלפוני", "441", 27'500},
    {"4414", "Photography", "צילום", "441", 11'000},
};

constexpr NamedCode products[] = {
    {"1", "Furniture", "רהיטים"},
    {"2", "Textiles", "טקסטיל"},
    {"3", "Kitchenware", "כלי מטבח"},
    {"4", "Lighting", "תאורה"},
    {"5", "Electronics", "אלקטרוניקה"},
    {"6", "Children's toys", "צעצועים"},
    {"7", "Garden", "גינה"},
    {"8", "Books & gifts", "ספרים ומתנות"},
};

constexpr NamedCode channels[] = {
    {"1", "wholesale", "סיטונאות"},
    {"2", "stores", "חנויות"},
    {"3", "online", "אונליין"},
};

constexpr NamedCode generalActivities[] = {
    {"901", "Management", "ניהול"},    {"902", "Property", "נכסים"},  {"903", "Finance", "מימון"},
    {"904", "Logistics", "לוגיסטיקה"}, {"905", "Marketing", "שיווק"}, {"906", "Personnel", "כוח אדם"},
};

constexpr StructureLink structures[] = {
    {"W", "OBS", "1", "Whole group", "כל הקבוצה"},
    {"W", "OBS", "2", "Wholesale", "סיטונאות"},
    {"W", "Segments", "1", "Trade", "מסחר"},
    {"S", "OBS", "1", "Whole group", "כל הקבוצה"},
    {"S", "OBS", "3", "Stores", "חנויות"},
    {"S", "Segments", "2", "Consumers", "צרכנים"},
    {"E", "OBS", "1", "Whole group", "כל הקבוצה"},
    {"E", "OBS", "4", "Online", "אונליין"},
    {"E", "Segments", "2", "Consumers", "צרכנים"},
    {"G", "OBS", "1", "Whole group", "כל הקבוצה"},
    {"G", "OBS", "5", "Shared services", "שירותים משותפים"},
};

} // namespace

std::span<const NamedCode> Firms() { return firms; }
std::span<const NamedCode> Regions() { return regions; }
std::span<const NamedCode> UnitKinds() { return unitKinds; }
std::span<const Site> Sites() { return sites; }
std::span<const CostCentre> CostCentres() { return costCentres; }
std::span<const NamedCode> Products() { return products; }
std::span<const NamedCode> Channels() { return channels; }
std::span<const NamedCode> GeneralActivities() { return generalActivities; }
std::span<const StructureLink> Structures() { return structures; }

const Site& FindSite(std::string_view code) {
    const auto* found =
        std::find_if(std::begin(sites), std::end(sites), [&](const Site& site) { return site.code == code; });
    if (found == std::end(sites)) {
        throw std::out_of_range(fmt::format("There is no site {}.", code));
    }
    return *found;
}

} // namespace qel::ledger
