#pragma once

#include <string>
#include <string_view>
#ifdef _WIN32
#include <windows.h> // which the next ones need
#else
#include <locale.h> // NOLINT(modernize-deprecated-headers): POSIX
#endif
#include <sql.h>
#include <sqlext.h>

// ODBC's texts: UTF-8 where its functions take bytes, UTF-16 on Windows.

namespace qel::engine {

using OdbcString = std::basic_string<SQLTCHAR>;
using OdbcView = std::basic_string_view<SQLTCHAR>;

OdbcString ToOdbc(std::string_view text);
/// A text that has no Unicode form becomes bytes that are not UTF-8.
std::string FromOdbc(OdbcView text);

/// While it lives, this thread's texts are UTF-8 to ODBC, which asks the locale.
class Utf8Locale {
public:
    Utf8Locale();
    ~Utf8Locale(); // NOLINT(performance-trivially-destructible): on Windows alone
    Utf8Locale(const Utf8Locale&) = delete;
    Utf8Locale& operator=(const Utf8Locale&) = delete;

#ifndef _WIN32
private:
    locale_t locale_, former_;
#endif
};

} // namespace qel::engine
