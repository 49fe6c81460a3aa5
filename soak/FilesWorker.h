#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "soak/SharedConnection.h"
#include "soak/Worker.h"

namespace harvlink::soak {

/// Stores, fetches, lists and deletes files on all controllers in turn, and compares every byte.
class FilesWorker final : public Worker {
public:
    FilesWorker(std::string name, Options const& options, Results& results, std::uint64_t seed,
                std::vector<SharedConnection*> const& connections, std::filesystem::path folder);

    std::size_t KeptBytes() const override;

private:
    using Content = std::optional<std::string>; ///< nothing: the file doesn't exist

    /// The files of this worker on a controller, each with all its possible contents.
    struct Store {
        SharedConnection* connection = nullptr;
        std::map<std::string, std::set<Content>> files;
    };

    void Step() override;
    void StoreFile(Store& store, std::string const& name);
    void Fetch(Store& store, std::string const& name);
    void Delete(Store& store, std::string const& name);
    void List(Store& store);
    StatusInfo Load(QuorvanController& robot, std::string const& name, std::string const& content);
    StatusInfo Save(QuorvanController& robot, std::string const& name, std::string& content);
    Answer CompareContent(std::set<Content>& possible, StatusInfo const& status, std::string const& got);
    bool CheckTransfer(std::string const& what, StatusInfo const& status);
    std::string RandomContent(std::string const& name);

    std::vector<Store> stores_;
    std::filesystem::path folder_;
    std::string difference_;
};

} // namespace harvlink::soak
