#pragma once

#include "engine/build/CsvReader.h"
#include "engine/build/RecordReader.h"

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace qel::engine {

/// Reads a CSV file on a second thread, up to three batches ahead of the caller. A short file is read on the
/// caller's thread.
class ReadAhead final : public RecordReader {
public:
    /// `reader` must not be used elsewhere once Next has been called.
    explicit ReadAhead(std::unique_ptr<CsvReader> reader);
    ~ReadAhead() override;
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    std::string_view RecordName() const override { return reader_->RecordName(); }
    bool Next() override;
    std::uint64_t Number() const override { return Current().number; }
    double Share() const override { return Current().share; }
    std::string Raw() const override;
    std::string HeaderText() const override { return reader_->HeaderText(); }
    char Delimiter() const override { return reader_->Delimiter(); }
    bool IsComplete() const override { return Current().isComplete; }

private:
    struct Record {
        std::uint64_t number = 0;
        double share = 0;
        bool isComplete = true;
        std::string fault;
        std::size_t text = 0, place = 0, raw = 0; ///< offsets of its parts in the batch
    };
    struct Batch {
        std::vector<Record> records = {Record()}; ///< the last element is the state after the last record
        RecordFields fields;                      ///< of all records
        std::string raw;
        bool isLast = false;
        std::exception_ptr failure; ///< raised by the reader after the last record
    };

    void Fill(Batch& batch, std::size_t mostBytes) noexcept;
    void AddRecords(Batch& batch, std::size_t mostBytes);
    void AddRecord(Batch& batch);
    void FillAll();
    void TakeBatch();
    void TakeFields();
    const Record& Current() const { return batch_->records[current_]; }
    const Record& Behind() const { return batch_->records[next_]; }

    std::unique_ptr<CsvReader> reader_;
    std::array<Batch, 4> batches_; ///< a ring
    Batch* batch_ = batches_.data();
    std::size_t current_ = 0, next_ = 0; ///< records of the batch
    std::mutex mutex_;                   ///< guards the members below, except the thread
    std::condition_variable hasChanged_;
    std::size_t filled_ = 0, used_ = 0; ///< numbers of batches since the start
    bool isEnded_ = false;
    std::thread thread_;
};

} // namespace qel::engine
