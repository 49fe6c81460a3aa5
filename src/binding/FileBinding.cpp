#include "binding/Binding.h"

using namespace harvlink::InteropHelper;
using harvlink::Binding::ControllerOf;
using harvlink::Binding::Guarded;
using harvlink::Binding::LowByteToBool;
using harvlink::Binding::ReturnedTexts;

namespace {

harvlink::FileInterface& FilesOf(ControllerHandle handle) {
    return *ControllerOf(handle).Files;
}

} // namespace

inline namespace harvlink_c {

IStatusInfo file_interface_LoadToControllerFromString(ControllerHandle handle, char const* fileName,
                                                      char const* content) {
    return Guarded(handle, [&] {
        return FilesOf(handle).LoadToControllerFromString(ConvertChar8ToString(fileName),
                                                          ConvertChar8ToString(content));
    });
}

IStatusInfo file_interface_LoadToControllerFromPath(ControllerHandle handle, char const* path) {
    return Guarded(handle, [&] { return FilesOf(handle).LoadToControllerFromPath(ConvertChar8ToString(path)); });
}

IStatusInfo file_interface_SaveFromControllerToFile(ControllerHandle handle, char const* fileName, char const* path,
                                                    int overwrite) {
    return Guarded(handle, [&] {
        return FilesOf(handle).SaveFromControllerToFile(ConvertChar8ToString(fileName), ConvertChar8ToString(path),
                                                        LowByteToBool(overwrite));
    });
}

char* file_interface_SaveFromControllerToString(ControllerHandle handle, char const* fileName, IStatusInfo* status) {
    std::string contents;
    IStatusInfo const result = Guarded(
        handle, [&] { return FilesOf(handle).SaveFromControllerToString(ConvertChar8ToString(fileName), contents); });
    ReturnedTexts texts(handle);
    char* const text = texts.Copy(contents);
    *status = texts.Checked(result);
    return text;
}

IStatusInfo file_interface_DeleteJobFile(ControllerHandle handle, char const* fileName) {
    return Guarded(handle, [&] { return FilesOf(handle).DeleteJobFile(ConvertChar8ToString(fileName)); });
}

IStatusInfo file_interface_GetFileCount(ControllerHandle handle, FileType type, int* count) {
    return ToPlain(FilesOf(handle).GetFileCount(static_cast<harvlink::FileType>(type), *count));
}

char* file_interface_ListFiles(ControllerHandle handle, FileType type, IStatusInfo* status, bool sorted) {
    std::vector<std::string> files;
    harvlink::StatusInfo const result = FilesOf(handle).ListFiles(static_cast<harvlink::FileType>(type), files, sorted);
    ReturnedTexts texts(handle);
    char* const names = texts.Copy(files);
    *status = texts.Checked(ToPlain(result));
    return names;
}

} // namespace harvlink_c
