#include "qel/engine/CubeFile.h"

#include "engine/storage/AggregateVerifier.h"
#include "engine/storage/CubeLoader.h"
#include "engine/storage/FactTable.h"
#include "engine/storage/FactVerifier.h"
#include "engine/storage/FileImage.h"
#include "engine/storage/MappedFile.h"
#include "engine/storage/MemberVerifier.h"
#include "qel/engine/EngineError.h"
#include "text/CaseFold.h"
#include "text/NameList.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <utility>

namespace qel::engine {

/// The bytes are either mapped or owned.
struct CubeFile::Contents {
    Contents(std::filesystem::path filePath, MappedFile mapped, std::vector<std::byte> memory)
        : path(std::move(filePath)), file(std::move(mapped)), held(std::move(memory)),
          bytes(held.empty() ? file.Bytes() : std::span<const std::byte>(held)),
          image(PathToUtf8(path), bytes, held.empty() ? &file : nullptr) {
        const std::uint32_t count = image.CubeCount();
        if (count > format::mostCubes) {
            image.Fail(fmt::format("it has {} cubes; {} are the limit", count, format::mostCubes));
        }
        for (std::uint32_t i = 0; i < count; ++i) {
            cubes.push_back(CubeLoader(image, i).Load());
            sources.push_back(CubeLoader(image, i).LoadSources(cubes.back()));
        }
        image.Verifier().CheckUnchanged();
    }

    std::filesystem::path path;
    MappedFile file;
    std::vector<std::byte> held;
    std::span<const std::byte> bytes;
    FileImage image;
    std::vector<Cube> cubes;
    std::vector<std::vector<SourceTotals>> sources; ///< by cube
};

CubeFile::CubeFile(std::unique_ptr<Contents> contents) : contents_(std::move(contents)) {}

CubeFile::~CubeFile() = default;

std::shared_ptr<const CubeFile> CubeFile::Open(const std::filesystem::path& path) {
    auto contents = std::make_unique<Contents>(path, MappedFile(path), std::vector<std::byte>());
    return std::shared_ptr<const CubeFile>(new CubeFile(std::move(contents))); // private constructor
}

std::shared_ptr<const CubeFile> CubeFile::FromMemory(const std::filesystem::path& name,
                                                     std::vector<std::byte> bytes) {
    auto contents = std::make_unique<Contents>(name, MappedFile(), std::move(bytes));
    return std::shared_ptr<const CubeFile>(new CubeFile(std::move(contents))); // private constructor
}

bool CubeFile::HasSignature(const std::filesystem::path& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) {
        return false;
    }
    std::array<char, format::signature.size()> start = {};
    std::ifstream file(path, std::ios::binary);
    return file.read(start.data(), start.size()) && start == format::signature;
}

const std::filesystem::path& CubeFile::Path() const { return contents_->path; }

std::uint64_t CubeFile::Size() const { return contents_->bytes.size(); }

const std::vector<Cube>& CubeFile::Cubes() const { return contents_->cubes; }

std::span<const SourceTotals> CubeFile::Sources(std::size_t cube) const { return contents_->sources[cube]; }

std::shared_ptr<const Cube> CubeFile::FindCube(std::string_view name) const {
    std::vector<std::string> names;
    for (const Cube& cube : Cubes()) {
        if (EqualIgnoringCase(cube.Name(), name)) {
            return {shared_from_this(), &cube};
        }
        names.push_back(cube.Name());
    }
    throw EngineError(ErrorKind::UnknownCube, fmt::format("{}: there is no cube \"{}\"; the file holds {}",
                                                          PathToUtf8(Path()), name, NameList(names)));
}

void CubeFile::Verify(const std::function<void(double)>& progress) const {
    std::uint64_t rows = 1;
    for (const Cube& cube : Cubes()) {
        rows += cube.Facts().RowCount() * cube.Facts().Projections().size();
    }
    std::uint64_t rowsBefore = 0;
    const auto report = [&](std::uint64_t rowsOfCube) {
        if (progress) {
            progress(static_cast<double>(rowsBefore + rowsOfCube) / static_cast<double>(rows));
        }
    };
    PageVerifier& pages = contents_->image.Verifier();
    std::uint32_t number = 0;
    for (const Cube& cube : Cubes()) {
        std::string fault = FindMemberFault(cube, contents_->image, number++);
        if (fault.empty()) {
            fault = FindFactFault(cube, report);
        }
        if (fault.empty()) {
            fault = FindAggregateFault(cube);
        }
        if (!fault.empty()) {
            contents_->image.Fail(fault);
        }
        rowsBefore += cube.Facts().RowCount() * cube.Facts().Projections().size();
    }
    for (std::uint64_t page = 0; page < pages.PageCount(); ++page) {
        pages.Check(page * format::pageSize, 1); // also pages outside all sections
    }
    pages.CheckUnchanged();
    report(1);
}

} // namespace qel::engine
