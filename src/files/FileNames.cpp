#include <algorithm>

#include "files/FileHandler.h"
#include "wire/HelperFunction.h"

namespace harvlink {
namespace {

constexpr std::size_t extensionLength = 4;

constexpr bool AreInOrderOfFileType() {
    for (std::size_t i = 0; i < FileKinds.size(); ++i) {
        if (static_cast<std::size_t>(FileKinds[i].type) != i) {
            return false;
        }
    }
    return true;
}
static_assert(AreInOrderOfFileType()); // they are looked up by number too

FileKind const* FindKind(std::string_view extension) {
    auto const kind = std::ranges::find(FileKinds, extension, &FileKind::Extension);
    return kind != FileKinds.end() ? &*kind : nullptr;
}

} // namespace

std::string FileHandler::GetFileExtension(std::string const& fileName) const {
    if (fileName.size() < extensionLength) {
        return "";
    }
    return HelperFunction::ToUpper(fileName.substr(fileName.size() - extensionLength));
}

bool FileHandler::CheckForFileExt(std::string const& fileName) const {
    std::string extension;
    return CheckForFileExt(fileName, extension);
}

bool FileHandler::CheckForFileExt(std::string const& fileName, std::string& extension) const {
    extension = GetFileExtension(fileName);
    return FindKind(extension) != nullptr;
}

FileType FileHandler::GetFileType(std::string const& fileName) const {
    FileKind const* const kind = FindKind(GetFileExtension(fileName));
    return kind != nullptr ? kind->type : FileType::JobFile;
}

bool FileHandler::CheckIfFileIsWritable(std::string const& fileName) const {
    return FileKinds[static_cast<std::size_t>(GetFileType(fileName))].writable;
}

std::string FileHandler::RemoveFileExtension(std::string const& fileName) const {
    return fileName.substr(0, fileName.size() - GetFileExtension(fileName).size());
}

bool FileHandler::CheckForJobNameInString(std::string const& fileName, std::string_view text) const {
    return text.find("//NAME " + RemoveFileExtension(HelperFunction::ToUpper(fileName))) != std::string_view::npos;
}

std::string HelperFunction::GetFileTypeStringFromEnum(FileType type) {
    auto const kind = std::ranges::find(FileKinds, type, &FileKind::type);
    return std::string(kind != FileKinds.end() ? kind->pattern : " ");
}

} // namespace harvlink
