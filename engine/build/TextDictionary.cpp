#include "engine/build/TextDictionary.h"

#include <xxhash.h>

#include <utility>

namespace qel::engine {

namespace {

std::uint32_t HashOf(std::string_view text) {
    return static_cast<std::uint32_t>(XXH3_64bits(text.data(), text.size()));
}

} // namespace

std::uint32_t TextDictionary::Add(std::string_view text) {
    const std::uint32_t hash = HashOf(text);
    Slot& slot = slots_[SlotOf(text, hash)];
    if (slot.numberPlusOne != 0) {
        return slot.numberPlusOne - 1;
    }
    bytes_ += text;
    offsets_.push_back(bytes_.size());
    slot = {hash, Count()};
    const std::uint32_t number = Count() - 1;
    if (std::size_t{Count()} * 2 > slots_.size()) {
        Grow();
    }
    return number;
}

std::optional<std::uint32_t> TextDictionary::Find(std::string_view text) const {
    const Slot& slot = slots_[SlotOf(text, HashOf(text))];
    return slot.numberPlusOne == 0 ? std::nullopt : std::optional(slot.numberPlusOne - 1);
}

std::size_t TextDictionary::SlotOf(std::string_view text, std::uint32_t hash) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t place = hash & mask;
    while (slots_[place].numberPlusOne != 0 &&
           (slots_[place].hash != hash || Text(slots_[place].numberPlusOne - 1) != text)) {
        place = (place + 1) & mask;
    }
    return place;
}

void TextDictionary::Grow() {
    std::vector<Slot> slots(slots_.size() * 2);
    const std::size_t mask = slots.size() - 1;
    for (const Slot& slot : slots_) {
        if (slot.numberPlusOne == 0) {
            continue;
        }
        std::size_t place = slot.hash & mask;
        while (slots[place].numberPlusOne != 0) {
            place = (place + 1) & mask;
        }
        slots[place] = slot;
    }
    slots_ = std::move(slots);
}

} // namespace qel::engine
