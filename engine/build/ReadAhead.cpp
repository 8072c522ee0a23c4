#include "engine/build/ReadAhead.h"

#include <utility>

namespace qel::engine {

namespace {

// Bytes per batch: few enough for the caches, enough to make the hand-over cheap.
constexpr std::size_t firstBytes = std::size_t{64} << 10U, laterBytes = std::size_t{256} << 10U;

} // namespace

ReadAhead::ReadAhead(std::unique_ptr<CsvReader> reader)
    : RecordReader(reader->Name()), reader_(std::move(reader)) {
    header_ = reader_->Header();
}

ReadAhead::~ReadAhead() {
    if (thread_.joinable()) {
        {
            const std::lock_guard lock(mutex_);
            isEnded_ = true;
        }
        hasChanged_.notify_one();
        thread_.join();
    }
}

bool ReadAhead::Next() {
    if (next_ + 1 == batch_->records.size() && !batch_->isLast) {
        TakeBatch();
    }
    current_ = next_;
    if (next_ + 1 == batch_->records.size()) {
        if (batch_->failure) {
            std::rethrow_exception(batch_->failure);
        }
        fault_.clear();
        return false;
    }
    ++next_;
    TakeFields();
    fault_ = Current().fault;
    return true;
}

std::string ReadAhead::Raw() const {
    return next_ == current_ ? std::string()
                             : batch_->raw.substr(Current().raw, Behind().raw - Current().raw);
}

void ReadAhead::TakeBatch() {
    next_ = 0;
    if (!thread_.joinable()) {
        Fill(*batch_, firstBytes);
        filled_ = 1;
        if (!batch_->isLast) {
            thread_ = std::thread([this] { FillAll(); });
        }
        return;
    }
    std::unique_lock lock(mutex_);
    ++used_;
    hasChanged_.notify_one();
    hasChanged_.wait(lock, [this] { return filled_ > used_; });
    batch_ = &batches_[used_ % batches_.size()];
}

void ReadAhead::TakeFields() {
    const Record &from = Current(), &to = Behind();
    fields_.text.assign(batch_->fields.text, from.text, to.text - from.text);
    fields_.places.assign(batch_->fields.places.begin() + static_cast<std::ptrdiff_t>(from.place),
                          batch_->fields.places.begin() + static_cast<std::ptrdiff_t>(to.place));
}

void ReadAhead::FillAll() {
    for (Batch* batch = nullptr; batch == nullptr || !batch->isLast;) {
        std::unique_lock lock(mutex_);
        hasChanged_.wait(lock, [this] { return filled_ - used_ < batches_.size() || isEnded_; });
        if (isEnded_) {
            return;
        }
        batch = &batches_[filled_ % batches_.size()];
        lock.unlock();
        Fill(*batch, laterBytes);
        lock.lock();
        ++filled_;
        hasChanged_.notify_one();
    }
}

void ReadAhead::Fill(Batch& batch, std::size_t mostBytes) noexcept {
    batch.records.resize(1);
    batch.records.front() = {};
    batch.fields.Clear();
    batch.raw.clear();
    try {
        AddRecords(batch, mostBytes);
    } catch (...) {
        batch.failure = std::current_exception();
        batch.isLast = true;
    }
}

void ReadAhead::AddRecords(Batch& batch, std::size_t mostBytes) {
    while (batch.raw.size() < mostBytes && !batch.isLast) {
        batch.isLast = !reader_->Next();
        batch.records.back().number = reader_->Number();
        batch.records.back().share = reader_->Share();
        batch.records.back().isComplete = reader_->IsComplete();
        if (!batch.isLast) {
            AddRecord(batch);
        }
    }
}

void ReadAhead::AddRecord(Batch& batch) {
    batch.records.back().fault = reader_->Fault();
    const RecordFields& fields = reader_->Fields();
    batch.fields.text += fields.text;
    batch.fields.places.insert(batch.fields.places.end(), fields.places.begin(), fields.places.end());
    batch.raw += reader_->RawText();
    Record behind;
    behind.text = batch.fields.text.size();
    behind.place = batch.fields.places.size();
    behind.raw = batch.raw.size();
    batch.records.push_back(std::move(behind));
}

} // namespace qel::engine
