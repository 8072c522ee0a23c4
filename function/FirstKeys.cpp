#include "function/FirstKeys.h"

#include "function/ArgToList.h"
#include "function/FormulaResult.h"
#include "platform/value/Conversion.h"

#include <utility>

namespace qel {

FirstKeys::FirstKeys(const ValueCall& call, const Locale& locale) {
    texts_.obsName = TextOf(call.ObsName, locale);
    texts_.obsLevel = TextOf(call.ObsLevel, locale);
    texts_.obsMember = TextOf(call.ObsMember, locale);
    texts_.activity = TextOf(call.ActivityList, locale);
    texts_.obsNumber = TextOf(call.ObsNum, locale);
    if (HoldsCarriedQuotes(texts_.obsMember)) {
        texts_.obsMember = Own(QuotesRestored(texts_.obsMember));
    }
}

ModSetCube::ValueKeys FirstKeys::Values() const {
    const auto& [obsName, obsNumber, obsLevel, obsMember, activity] = texts_;
    return {std::string(obsName), std::string(obsNumber), std::string(obsLevel), std::string(obsMember),
            std::string(activity)};
}

std::string_view FirstKeys::TextOf(const Variant& list, const Locale& locale) {
    const std::string* const plain = PlainFirstKey(list);
    return plain != nullptr ? std::string_view(*plain) : Own(ToText(FirstKey(list, locale), locale));
}

std::string_view FirstKeys::Own(std::string text) { return own_[ownCount_++] = std::move(text); }

} // namespace qel
