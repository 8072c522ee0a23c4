#include "platform/settings/windows/WindowsProfiles.h"

#include "platform/settings/windows/ProfileEncoding.h"
#include "platform/windows/WideText.h"

namespace qel::windows {

std::string WindowsProfiles::ReadString(const std::string& section, const std::string& key,
                                        std::size_t capacity, const std::string& file) {
    std::wstring buffer(capacity, L' ');
    const DWORD length =
        ::GetPrivateProfileStringW(ToWide(section).c_str(), ToWide(key).c_str(), L"", buffer.data(),
                                   static_cast<DWORD>(capacity), ToWide(file).c_str());
    return ToUtf8(buffer.substr(0, length));
}

std::int32_t WindowsProfiles::WriteString(const std::string& section, const std::string& key,
                                          const std::string& value, const std::string& file) {
    const std::wstring wideSection = ToWide(section);
    const std::wstring wideKey = ToWide(key);
    const std::wstring wideValue = ToWide(value);
    const std::wstring wideFile = ToWide(file);
    MakeRoomFor(wideSection + wideKey + wideValue, wideFile);
    return ::WritePrivateProfileStringW(wideSection.c_str(), wideKey.c_str(), wideValue.c_str(),
                                        wideFile.c_str());
}

std::string WindowsProfiles::ReadSection(const std::string& section, std::size_t capacity,
                                         const std::string& file) {
    std::wstring buffer(capacity, L' ');
    const DWORD length = ::GetPrivateProfileSectionW(ToWide(section).c_str(), buffer.data(),
                                                     static_cast<DWORD>(capacity), ToWide(file).c_str());
    return ToUtf8(buffer.substr(0, length));
}

} // namespace qel::windows
