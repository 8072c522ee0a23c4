#include "engine/build/SpillStore.h"

#include "engine/storage/WriteFailure.h"

#include <algorithm>
#include <utility>

namespace qel::engine {

namespace {

constexpr std::size_t leastChunk = std::size_t{4} << 10U, mostChunk = std::size_t{256} << 10U;

} // namespace

SpillStore::SpillStore(std::filesystem::path output, std::uint64_t memory)
    : output_(std::move(output)), memory_(memory), left_(memory / 8 * 3),
      chunkBytes_(std::clamp<std::size_t>(static_cast<std::size_t>(memory >> 10U), leastChunk, mostChunk)) {}

bool SpillStore::TakeMemory(std::uint64_t bytes) {
    const std::lock_guard lock(mutex_);
    const bool isLeft = bytes <= left_;
    left_ -= isLeft ? bytes : 0;
    return isLeft;
}

void SpillStore::GiveMemory(std::uint64_t bytes) {
    const std::lock_guard lock(mutex_);
    left_ += bytes;
}

std::uint64_t SpillStore::TakePlace() {
    const std::lock_guard lock(mutex_);
    if (freePlaces_.empty()) {
        fileEnd_ += chunkBytes_;
        return fileEnd_ - chunkBytes_;
    }
    const std::uint64_t place = freePlaces_.back();
    freePlaces_.pop_back();
    return place;
}

void SpillStore::GivePlace(std::uint64_t place) {
    const std::lock_guard lock(mutex_);
    freePlaces_.push_back(place);
}

TemporaryFile& SpillStore::File() {
    const std::lock_guard lock(mutex_);
    if (!file_) {
        file_ = std::make_unique<TemporaryFile>(output_, RaiseCannotWrite);
    }
    return *file_;
}

ByteStream::ByteStream(ByteStream&& other) noexcept
    : store_(other.store_), size_(std::exchange(other.size_, 0)), chunks_(std::exchange(other.chunks_, {})),
      last_(std::exchange(other.last_, {})) {}

ByteStream& ByteStream::operator=(ByteStream&& other) noexcept {
    std::swap(store_, other.store_);
    std::swap(size_, other.size_);
    chunks_.swap(other.chunks_);
    last_.swap(other.last_);
    return *this;
}

void ByteStream::Append(std::span<const std::byte> bytes) {
    size_ += bytes.size();
    while (!bytes.empty()) {
        const std::size_t part = std::min(bytes.size(), store_->chunkBytes_ - last_.size());
        last_.insert(last_.end(), bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(part));
        bytes = bytes.subspan(part);
        if (last_.size() == store_->chunkBytes_) {
            Keep(last_);
        }
    }
}

/// Makes the bytes a chunk. They are empty afterwards.
void ByteStream::Keep(std::vector<std::byte>& bytes) {
    chunks_.emplace_back();
    if (store_->TakeMemory(bytes.size())) {
        chunks_.back().bytes = std::exchange(bytes, {});
        return;
    }
    chunks_.back().place = store_->TakePlace();
    store_->File().WriteAt(chunks_.back().place, bytes);
    bytes.clear();
}

void ByteStream::Finish() {
    if (!last_.empty()) {
        last_.shrink_to_fit();
        Keep(last_);
        last_.shrink_to_fit();
    }
}

void ByteStream::Read(std::uint64_t offset, std::span<std::byte> bytes) const {
    while (!bytes.empty()) {
        const auto chunk = static_cast<std::size_t>(offset / store_->chunkBytes_);
        const auto within = static_cast<std::size_t>(offset % store_->chunkBytes_);
        const std::size_t part = std::min(bytes.size(), store_->chunkBytes_ - within);
        const std::vector<std::byte>& held = chunk < chunks_.size() ? chunks_[chunk].bytes : last_;
        if (held.empty()) {
            store_->File().ReadAt(chunks_[chunk].place + within, bytes.first(part));
        } else {
            std::copy_n(held.begin() + static_cast<std::ptrdiff_t>(within), part, bytes.begin());
        }
        bytes = bytes.subspan(part);
        offset += part;
    }
}

void ByteStream::ReleaseBefore(std::uint64_t offset) {
    const auto end = std::min<std::uint64_t>(offset / store_->chunkBytes_, chunks_.size());
    // Chunks are released in order, so the first one that is not is found from the end.
    for (auto chunk = static_cast<std::size_t>(end); chunk > 0 && !chunks_[chunk - 1].isReleased; --chunk) {
        Release(chunks_[chunk - 1]);
    }
}

void ByteStream::Release(Chunk& chunk) {
    if (chunk.bytes.empty()) {
        store_->GivePlace(chunk.place);
    } else {
        store_->GiveMemory(chunk.bytes.size());
        chunk.bytes = {};
    }
    chunk.isReleased = true;
}

void ByteStream::Clear() {
    for (Chunk& chunk : chunks_) {
        if (!chunk.isReleased) {
            Release(chunk);
        }
    }
    chunks_.clear();
    last_ = {};
    size_ = 0;
}

} // namespace qel::engine
