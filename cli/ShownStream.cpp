#include "cli/ShownStream.h"

namespace qel {

std::streamsize ShownStream::xsputn(const char* text, std::streamsize count) {
    std::string shown;
    filter_.Append({text, static_cast<std::size_t>(count)}, shown);
    const auto size = static_cast<std::streamsize>(shown.size());
    return target_->sputn(shown.data(), size) == size ? count : 0;
}

ShownStream::int_type ShownStream::overflow(int_type character) {
    if (traits_type::eq_int_type(character, traits_type::eof())) {
        return traits_type::not_eof(character);
    }
    const char byte = traits_type::to_char_type(character);
    return xsputn(&byte, 1) == 1 ? character : traits_type::eof();
}

} // namespace qel
