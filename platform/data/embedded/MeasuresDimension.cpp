#include "platform/data/embedded/MeasuresDimension.h"

#include "platform/data/ObjectErrors.h"
#include "platform/data/embedded/ProviderErrors.h"
#include "text/CaseFold.h"
#include "text/Text.h"

#include <fmt/format.h>

namespace qel {

namespace {

using CubePointer = std::shared_ptr<const engine::Cube>;

constexpr const char* measuresName = "Measures";
constexpr const char* measuresLevelName = "MeasuresLevel";

class MeasureMember : public Member {
public:
    MeasureMember(CubePointer cube, std::size_t measure) : cube_(std::move(cube)), measure_(measure) {}

    std::string Name() const override { return Stored().name; }
    std::string Caption() const override { return Stored().caption; }
    std::string UniqueName() const override {
        return fmt::format("[{}].[{}]", measuresName, ReplaceAll(Stored().name, "]", "]]"));
    }
    std::unique_ptr<Member> Parent() const override { return nullptr; }

private:
    const engine::Measure& Stored() const { return cube_->Measures()[measure_]; }

    CubePointer cube_;
    std::size_t measure_;
};

class MeasuresLevel : public Level {
public:
    explicit MeasuresLevel(CubePointer cube) : cube_(std::move(cube)) {}

    std::string Name() const override { return measuresLevelName; }
    std::string Caption() const override { return measuresLevelName; }
    std::int32_t MemberCount() const override { return static_cast<std::int32_t>(cube_->Measures().size()); }
    std::unique_ptr<Member> MemberAt(std::int32_t index) const override {
        const auto place = CheckedIndex(index, cube_->Measures().size());
        return std::make_unique<MeasureMember>(cube_, place);
    }

private:
    CubePointer cube_;
};

class MeasuresHierarchy : public Hierarchy {
public:
    explicit MeasuresHierarchy(CubePointer cube) : cube_(std::move(cube)) {}

    std::string Name() const override { return measuresName; }
    std::string Caption() const override { return measuresName; }
    std::string UniqueName() const override { return fmt::format("[{}]", measuresName); }
    std::int32_t LevelCount() const override { return 1; }
    std::unique_ptr<Level> LevelAt(std::int32_t index) const override {
        CheckedIndex(index, 1);
        return std::make_unique<MeasuresLevel>(cube_);
    }
    std::unique_ptr<Level> LevelNamed(const std::string& name) const override {
        if (!EqualIgnoringCase(name, measuresLevelName)) {
            throw ProviderError(errorItemNotFound,
                                fmt::format("The hierarchy {} has no level '{}'.", UniqueName(), name));
        }
        return std::make_unique<MeasuresLevel>(cube_);
    }

private:
    CubePointer cube_;
};

class MeasuresDimension : public Dimension {
public:
    explicit MeasuresDimension(CubePointer cube) : cube_(std::move(cube)) {}

    std::string Name() const override { return measuresName; }
    std::string Caption() const override { return measuresName; }
    std::int32_t HierarchyCount() const override { return 1; }
    std::unique_ptr<Hierarchy> HierarchyAt(std::int32_t index) const override {
        CheckedIndex(index, 1);
        return std::make_unique<MeasuresHierarchy>(cube_);
    }

private:
    CubePointer cube_;
};

} // namespace

bool IsMeasuresName(std::string_view name) { return EqualIgnoringCase(name, measuresName); }

std::unique_ptr<Dimension> MakeMeasuresDimension(std::shared_ptr<const engine::Cube> cube) {
    return std::make_unique<MeasuresDimension>(std::move(cube));
}

} // namespace qel
