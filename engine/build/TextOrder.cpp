#include "engine/build/TextOrder.h"

#include "text/CaseFold.h"

#include <algorithm>
#include <numeric>
#include <string>

namespace qel::engine {

namespace {

bool IsWholeNumber(std::string_view text) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string_view WithoutZeros(std::string_view digits) {
    return digits.substr(std::min(digits.find_first_not_of('0'), digits.size()));
}

bool IsSmaller(std::string_view left, std::string_view right) {
    left = WithoutZeros(left);
    right = WithoutZeros(right);
    return left.size() != right.size() ? left.size() < right.size() : left < right;
}

} // namespace

std::vector<std::uint32_t> SortTexts(const std::vector<std::string_view>& texts) {
    std::vector<std::uint32_t> order(texts.size());
    std::iota(order.begin(), order.end(), 0U);
    if (std::all_of(texts.begin(), texts.end(), IsWholeNumber)) {
        std::stable_sort(order.begin(), order.end(),
                         [&](auto left, auto right) { return IsSmaller(texts[left], texts[right]); });
        return order;
    }
    std::vector<std::string> folded;
    folded.reserve(texts.size());
    for (const std::string_view text : texts) {
        folded.push_back(FoldCase(text));
    }
    std::stable_sort(order.begin(), order.end(),
                     [&](auto left, auto right) { return folded[left] < folded[right]; });
    return order;
}

} // namespace qel::engine
