#include "simulator/files/FileStore.h"

#include <algorithm>
#include <utility>

#include "simulator/files/FileName.h"
#include "simulator/files/FileRefusals.h"
#include "simulator/files/GeneratedFiles.h"
#include "simulator/model/ControllerModel.h"

namespace harvlink::simulator {

namespace {

constexpr std::uint32_t OverwriteNumber = 214;
constexpr std::int32_t OverwriteAllowed = 2;

GeneratedFile const* FindGenerated(std::string_view name) {
    auto const found = std::ranges::find(GeneratedFiles(), name, &GeneratedFile::name);
    return found == GeneratedFiles().end() ? nullptr : &*found;
}

bool IsJob(std::string_view name) {
    return FileTypeOf(name) == FileType::JobFile;
}

std::string WithFullLineEnds(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    std::size_t taken = 0;
    for (auto at = text.find('\n'); at != std::string_view::npos; at = text.find('\n', at + 1)) {
        if (at == 0 || text[at - 1] != '\r') {
            result.append(text, taken, at - taken).append("\r");
            taken = at;
        }
    }
    return result.append(text, taken);
}

} // namespace

FileStore::FileStore(ControllerModel& model, std::filesystem::path const& folder, JobTextCheck checkJob)
    : model_(model), checkJob_(checkJob), folder_(folder) {
    static_cast<void>(model_.parameters.Set(SystemParameterType::RS, 0, OverwriteNumber, OverwriteAllowed));
    if (!folder_.IsOpen()) {
        for (auto const& job : SampleJobs()) {
            static_cast<void>(Keep(std::string(job.name), std::string(job.text)));
        }
    }
}

Refusal FileStore::Put(std::string_view name, std::string_view content) {
    auto const stored = FileNameFrom(name);
    return stored ? Keep(*stored, WithFullLineEnds(content)) : FileRefusal::NoSuchFile;
}

Refusal FileStore::Keep(std::string const& name, std::string content) {
    auto const old = kept_.find(name);
    auto const freed = old == kept_.end() ? 0 : old->second->size();
    bool const hasPlace = old != kept_.end() || kept_.size() < MaxFiles;
    if (content.size() > MaxFileSize || keptSize_ - freed + content.size() > MaxMemory || !hasPlace) {
        return FileRefusal::DiskFull;
    }
    keptSize_ = keptSize_ - freed + content.size();
    kept_[name] = std::make_shared<std::string const>(std::move(content));
    ++revision_;
    return Refusal::None;
}

void FileStore::Forget(std::string_view name) {
    if (auto const found = kept_.find(name); found != kept_.end()) {
        keptSize_ -= found->second->size();
        kept_.erase(found);
    }
    ++revision_;
}

FileText FileStore::Read(std::string_view name) const {
    if (auto const found = kept_.find(name); found != kept_.end()) {
        return found->second;
    }
    if (folder_.IsOpen()) {
        if (auto content = folder_.Read(name, MaxFileSize)) {
            return std::make_shared<std::string const>(std::move(*content));
        }
    }
    auto const* const generated = FindGenerated(name);
    if (generated == nullptr || !IsServed(generated->isConfiguration)) {
        return nullptr;
    }
    return std::make_shared<std::string const>(generated->text(model_));
}

FileText FileStore::JobText(std::string_view name) const {
    auto const fileName = FileNameFrom(std::string(name) + ".JBI");
    return fileName ? Read(*fileName) : nullptr;
}

bool FileStore::Contains(std::string_view name) const {
    auto const* const generated = FindGenerated(name);
    return kept_.contains(name) || (folder_.IsOpen() && folder_.Contains(name)) ||
           (generated != nullptr && IsServed(generated->isConfiguration));
}

std::vector<std::string> FileStore::Names(std::string_view pattern) const {
    auto names = folder_.IsOpen() ? folder_.Names() : std::vector<std::string>();
    for (auto const& [name, text] : kept_) {
        names.push_back(name);
    }
    for (auto const& generated : GeneratedFiles()) {
        if (IsServed(generated.isConfiguration)) {
            names.emplace_back(generated.name);
        }
    }
    std::erase_if(names, [&](std::string const& name) { return !MatchesPattern(pattern, name); });
    std::ranges::sort(names);
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

bool FileStore::IsExecuted(std::string_view name) const {
    return IsJob(name) && model_.IsExecuting(name.substr(0, name.rfind('.')));
}

std::int32_t FileStore::OverwriteParameter() const {
    std::int32_t value = 0;
    static_cast<void>(
        model_.parameters.Read(static_cast<std::uint32_t>(SystemParameterType::RS), 0, OverwriteNumber, value));
    return value;
}

Refusal FileStore::CheckLoad(std::string_view name) const {
    if (!FileTypeOf(name) || !IsWritable(*FileTypeOf(name))) {
        return FileRefusal::NotWritable;
    }
    if (model_.state.mode != Mode::Remote) {
        return FileRefusal::RemoteModeIsOff;
    }
    if (OverwriteParameter() != OverwriteAllowed && Contains(name)) {
        return FileRefusal::OverwriteForbidden;
    }
    return IsExecuted(name) ? Refusal::RobotIsOperating : Refusal::None;
}

Refusal FileStore::Load(std::string const& name, std::string content) {
    auto refusal = CheckLoad(name);
    if (refusal == Refusal::None && IsJob(name)) {
        refusal = checkJob_(std::string_view(name).substr(0, name.rfind('.')), content);
    }
    if (refusal != Refusal::None) {
        return refusal;
    }
    if (!folder_.IsOpen()) {
        return Keep(name, std::move(content));
    }
    refusal = folder_.Write(name, content);
    if (refusal == Refusal::None) {
        Forget(name);
    }
    return refusal;
}

Refusal FileStore::Delete(std::string_view name) {
    if (!Contains(name)) {
        return FileRefusal::NoSuchFile;
    }
    if (!IsJob(name)) {
        return FileRefusal::NotDeletable;
    }
    if (model_.state.mode != Mode::Remote) {
        return FileRefusal::RemoteModeIsOff;
    }
    if (IsExecuted(name)) {
        return Refusal::RobotIsOperating;
    }
    if (folder_.IsOpen() && folder_.Contains(name)) {
        if (auto const refusal = folder_.Remove(name); refusal != Refusal::None) {
            return refusal;
        }
    }
    Forget(name);
    return Refusal::None;
}

} // namespace harvlink::simulator
