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

/// CubePathFrom for many calls, most of which name the cube of the call before.
class CubePaths {
public:
    std::string Of(const DocumentReference& document, const std::string& cubeFile);

private:
    rtl::OUString address_; ///< of the document
    std::string cubeFile_, text_, textInFolder_;
    std::filesystem::path inFolder_; ///< where the document's folder would have the cube; empty without one
};

} // namespace qel::calc
