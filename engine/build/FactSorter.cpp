#include "engine/build/FactSorter.h"

#include "engine/build/AggregateBuilder.h"
#include "engine/build/AggregateLayout.h"
#include "engine/build/MemberSets.h"
#include "engine/build/RecordSorter.h"
#include "engine/build/TwoThreads.h"
#include "engine/storage/Format.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <numeric>
#include <optional>
#include <span>
#include <utility>

namespace qel::engine {

namespace {

/// A field of every record; the first bytes of it where the width is less than the field's.
std::vector<std::byte> FieldsOf(const RecordLayout::Field& field, std::size_t recordSize,
                                std::span<const std::byte> records) {
    std::vector<std::byte> fields(records.size() / recordSize * field.width);
    std::byte* to = fields.data();
    for (std::size_t at = field.offset; at < records.size(); at += recordSize, to += field.width) {
        std::memcpy(to, &records[at], field.width);
    }
    return fields;
}

/// The sections of the projections, in the order of the file.
struct ProjectionSections {
    struct Column {
        std::size_t projection = 0;
        RecordLayout::Field field;
    };

    std::vector<Column> columns;
    std::vector<CubeFileWriter::SizedSection> sections;

    void Add(format::SectionKind kind, std::uint32_t cube, std::size_t projection, std::size_t index,
             const RecordLayout::Field& field, std::uint64_t rows) {
        columns.push_back({projection, field});
        sections.push_back({{static_cast<std::uint32_t>(kind), cube, static_cast<std::uint32_t>(projection),
                             static_cast<std::uint32_t>(index)},
                            rows * field.width});
    }
};

ProjectionSections SectionsOf(const CubeModel& model, const RecordLayout& layout, std::uint32_t cube) {
    using format::SectionKind;
    ProjectionSections all;
    for (std::size_t i = 0; i < model.projections.size(); ++i) {
        for (std::size_t packed = 0; packed < layout.packedColumns.size(); ++packed) {
            if (!HoldsLeadAlone(model.keyColumns, packed, model.projections[i].sortOrder.front())) {
                all.Add(SectionKind::PackedColumns, cube, i, packed, layout.packedColumns[packed],
                        model.rowCount);
            }
        }
        for (std::size_t measure = 0; measure < model.measures.size(); ++measure) {
            if (model.measures[measure].width != 0) {
                all.Add(SectionKind::FactValues, cube, i, measure, layout.values[measure], model.rowCount);
            }
        }
        if (layout.factNumber) { // which line of the ledger each row is
            all.Add(SectionKind::DetailFacts, cube, i, 0,
                    {layout.factNumber->offset, BytesFor(model.rowCount)}, model.rowCount);
        }
    }
    return all;
}

/// Counts the facts of each pair of codes while they come in their order.
class PairCounter {
public:
    PairCounter(const RecordLayout& layout, const std::vector<std::uint16_t>& sortOrder,
                std::size_t leadCodes, PairCounts& counts)
        : size_(layout.size), lead_(layout.keys[sortOrder[0]]), second_(layout.keys[sortOrder[1]]),
          leadCodes_(leadCodes), counts_(counts) {}

    void Count(std::span<const std::byte> records) {
        for (std::size_t at = 0; at < records.size(); at += size_) {
            const std::uint32_t lead = lead_.Code(&records[at]), second = second_.Code(&records[at]);
            if (current_.facts == 0 || lead != currentLead_ || second != current_.second) {
                Store();
                BeginLeads(std::size_t{lead} + 1);
                currentLead_ = lead;
                current_ = {second, 0};
            }
            ++current_.facts;
        }
    }
    void Finish() {
        Store();
        BeginLeads(leadCodes_ + 1);
        counts_.pairs.Finish();
    }

private:
    void Store() {
        if (current_.facts != 0) {
            counts_.pairs.Append(std::as_bytes(std::span(&current_, 1)));
        }
    }
    /// The codes below `end` that have not begun begin here.
    void BeginLeads(std::size_t end) {
        counts_.starts.resize(std::max(end, counts_.starts.size()),
                              counts_.pairs.Size() / sizeof(PairCounts::Pair));
    }

    std::size_t size_;
    const RecordLayout::KeyField &lead_, &second_;
    std::size_t leadCodes_;
    PairCounts& counts_;
    std::uint32_t currentLead_ = 0;
    PairCounts::Pair current_;
};

void WriteDetailTexts(const CubeModel& model, const CubeFacts& facts, std::uint32_t cube,
                      CubeFileWriter& writer) {
    using format::SectionKind;
    for (std::uint32_t i = 0; i < model.details.columns.size(); ++i) {
        const DetailModel& column = model.details.columns[i];
        const TextDictionary& texts = facts.details[i].texts;
        const auto section = [&](SectionKind kind, const auto& append) {
            writer.Begin({static_cast<std::uint32_t>(kind), cube, 0, i});
            append();
            writer.End();
        };
        if (column.codeWidth != 0) {
            section(SectionKind::DetailCodes, [&] {
                RecordSource(facts.details[i].numbers)
                    .ForEach(sizeof(std::uint32_t), [&](const auto& numbers) {
                        writer.Append(FieldsOf({0, column.codeWidth}, sizeof(std::uint32_t), numbers));
                    });
            });
        }
        section(SectionKind::DetailOffsets, [&] {
            std::uint64_t offset = 0;
            for (std::uint32_t text = 0; text <= column.texts; ++text) {
                writer.Append(std::as_bytes(std::span(&offset, 1)).first(column.offsetWidth));
                offset += text < column.texts ? texts.Text(text).size() : 0;
            }
        });
        section(SectionKind::DetailTexts, [&] {
            for (std::uint32_t text = 0; text < column.texts; ++text) {
                writer.Append(std::as_bytes(std::span(texts.Text(text))));
            }
        });
    }
}

} // namespace

std::vector<std::vector<std::uint16_t>> ChooseSortOrders(const std::vector<KeyColumn>& keyColumns,
                                                         const std::vector<bool>& isCalendar) {
    constexpr std::uint32_t largeFrom = 32; // codes
    constexpr std::size_t mostLeads = 5;
    std::vector<std::uint16_t> texts, dates;
    for (std::size_t i = 0; i < keyColumns.size(); ++i) {
        (isCalendar[i] ? dates : texts).push_back(static_cast<std::uint16_t>(i));
    }
    std::stable_sort(texts.begin(), texts.end(),
                     [&](auto left, auto right) { return keyColumns[left].codes > keyColumns[right].codes; });

    std::vector<std::vector<std::uint16_t>> orders;
    for (const std::uint16_t lead : texts) {
        const bool isLarge = keyColumns[lead].codes >= largeFrom;
        if (!orders.empty() && (!isLarge || orders.size() == mostLeads)) {
            break;
        }
        std::vector<std::uint16_t> order = {lead};
        const auto second =
            std::find_if(texts.begin(), texts.end(), [lead](auto other) { return other != lead; });
        if (second != texts.end()) {
            order.push_back(*second);
        }
        order.insert(order.end(), dates.begin(), dates.end());
        orders.push_back(order);
    }
    for (const std::uint16_t date : dates) {
        orders.push_back({date});
        orders.back().insert(orders.back().end(), texts.begin(),
                             texts.begin() + std::min<std::ptrdiff_t>(2, std::ssize(texts)));
    }
    return orders;
}

ProjectionModel DescribeProjection(const std::vector<std::uint16_t>& sortOrder,
                                   const std::vector<std::uint64_t>& facts) {
    std::vector<std::uint64_t> leadRows(facts.size() + 1);
    std::partial_sum(facts.begin(), facts.end(), leadRows.begin() + 1);
    return {sortOrder, std::move(leadRows)};
}

void WriteFacts(const CubeModel& model, CubeFacts& facts, std::uint32_t cube, SpillStore& store,
                CubeFileWriter& writer, const std::function<void(double)>& progress) {
    AggregateModel aggregates = LayOutAggregates(model);
    FindGroups(model, aggregates);
    AggregateFacts aggregateFacts(aggregates, facts.layout, store);
    std::map<std::size_t, PairCounts> pairs;
    for (const std::size_t projection : CountedPairs(model, aggregates)) {
        pairs.try_emplace(projection, store);
    }
    const ProjectionSections all = SectionsOf(model, facts.layout, cube);
    std::vector<ParallelSection> sections = writer.BeginTogether(all.sections);
    const auto writeProjection = [&](std::size_t projection) {
        const std::vector<std::uint16_t>& order = model.projections[projection].sortOrder;
        std::optional<PairCounter> counter;
        if (const auto found = pairs.find(projection); found != pairs.end()) {
            counter.emplace(facts.layout, order, model.keyColumns[order[0]].codes, found->second);
        }
        RecordSorter(model, facts.layout, store)
            .Sort(RecordSource(facts.records), order, [&](std::span<const std::byte> records) {
                for (std::size_t i = 0; i < sections.size(); ++i) {
                    if (all.columns[i].projection == projection) {
                        sections[i].Append(FieldsOf(all.columns[i].field, facts.layout.size, records));
                    }
                }
                if (counter) {
                    counter->Count(records);
                }
            });
        if (counter) {
            counter->Finish();
        }
    };
    const auto sortForAggregates = [&] {
        RecordSorter(model, facts.layout, store)
            .Sort(RecordSource(facts.records), aggregateFacts.SortOrder(),
                  [&](std::span<const std::byte> records) { aggregateFacts.Append(records); });
        aggregateFacts.Finish();
    };
    RunOnTwoThreads(
        model.projections.size() + 1,
        [&](std::size_t i) { i < model.projections.size() ? writeProjection(i) : sortForAggregates(); },
        [&](double share) { progress(share / 2); });
    writer.EndTogether();
    facts.records.Clear();
    WriteDetailTexts(model, facts, cube, writer);
    const std::vector<ChosenAggregate> chosen = ChooseAggregates(model, facts.codes, pairs, aggregates);
    if (!chosen.empty()) {
        WriteAggregatesOf(chosen, model, aggregates, aggregateFacts, cube, store, writer,
                          [&](double share) { progress((1 + share) / 2); });
    }
    progress(1);
}

} // namespace qel::engine
