#pragma once

#include <com/sun/star/beans/XPropertySet.hpp>
#include <filesystem>
#include <rtl/ustring.hxx>
#include <string>

namespace qel::calc {

/// The document of the cell that calls, as Calc passes it.
using DocumentReference = com::sun::star::uno::Reference<com::sun::star::beans::XPropertySet>;

/// The path of a cube as a formula of the document means it: a relative path that leads from the document's
/// folder to a file leads there; every other path stays as it is, and a relative one then counts from the
/// current folder.
std::string CubePathFrom(const DocumentReference& document, const std::string& cubeFile);

/// CubePathFrom that keeps its last result: consecutive cells usually name the same cube.
class CubePaths {
public:
    std::string Of(const DocumentReference& document, const std::string& cubeFile);

private:
    rtl::OUString address_; ///< of the document
    std::string cubeFile_, text_, textInFolder_;
    std::filesystem::path inFolder_; ///< the cube in the document's folder; empty if the document has none
};

} // namespace qel::calc
