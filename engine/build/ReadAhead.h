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

/// Reads the records of a CSV file on a second thread while the caller uses those before; those of a short
/// file on the caller's thread.
class ReadAhead final : public RecordReader {
public:
    /// From the first call of Next on nobody else uses `reader`.
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
        std::size_t text = 0, place = 0, raw = 0; ///< where its parts begin in the batch
    };
    struct Batch {
        std::vector<Record> records = {Record()}; ///< and one that stands for the place behind them
        RecordFields fields;                      ///< of all records
        std::string raw;
        bool isLast = false;
        std::exception_ptr failure; ///< in place of what would follow the records
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
    std::array<Batch, 4> batches_; ///< filled and used in turn
    Batch* batch_ = batches_.data();
    std::size_t current_ = 0, next_ = 0; ///< records of the batch
    std::mutex mutex_;                   ///< of the numbers below
    std::condition_variable hasChanged_;
    std::size_t filled_ = 0, used_ = 0; ///< batches, from the first one on
    bool isEnded_ = false;
    std::thread thread_;
};

} // namespace qel::engine
