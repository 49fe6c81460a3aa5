#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "harvlink/ControlGroupId.h"
#include "harvlink/QuorvanController.h"
#include "wire/NetworkManager.h"

namespace harvlink {

/// The one place that knows every implementation class. The engine is its first member and so outlives them all.
class QuorvanControllerImplementation final : public QuorvanController {
public:
    /// Opens the engine and runs the start-up sequence. After a failure the object holds what it had made until then.
    QuorvanControllerImplementation(std::string const& ipAddress, unsigned timeoutMilliseconds, unsigned retries,
                                    bool logging, StatusInfo& status, ConnectionPolicy const& policy = {});

    /// The same over a transport of the caller's.
    QuorvanControllerImplementation(std::unique_ptr<DatagramTransport> transport, unsigned timeoutMilliseconds,
                                    unsigned retries, bool logging, StatusInfo& status,
                                    ConnectionPolicy const& policy = {});
    ~QuorvanControllerImplementation() override;

    /// State of parameter RS022 from "RS.PRM": 1, 0, or -1 if the file can't be read or is too short.
    int GetRS22StateFromFile();

    /// Number of tool files in "TOOL.CND"; 0 if it can't be read.
    int GetNumberOfToolFiles();

    /// Fills the engine's group list from "SYSTEM.SYS". Fails quietly: the list then stays empty.
    bool GetAttachedControlGroups();

    /// -1 if the controller does not answer.
    int GetNumberOfAxesInGroup(ControlGroupId group, StatusInfo& status);

    /// Adds base Bn for the n-th robot whose name line has a base.
    void SetBases(std::vector<std::string> const& robotNameLines, StatusInfo& status);

    NetworkManager const& Engine() const { return networkManager; }

private:
    // Delegated to, so that the destructor runs if the start-up throws.
    template <typename Peer>
    QuorvanControllerImplementation(Peer&& peer, unsigned timeoutMilliseconds, unsigned retries, StatusInfo& status,
                                    ConnectionPolicy const& policy);
    void StartUp(bool logging, StatusInfo& status);
    StatusInfo ReadFile(std::string const& name, std::string& text);
    void NoteGap(StatusInfo const& status);
    StatusInfo const& Gap() const;
    bool FailsByGap(StatusInfo& status) const;
    std::optional<int> ReadRS22State(StatusInfo& status);
    void CreateInterfaces(int rs22State, int numberOfToolFiles);
    void AttachGroup(ControlGroupId group, StatusInfo& status);

    NetworkManager networkManager;
    StatusInfo gap; ///< why the start-up goes on with less, if it does. See Rule::WholeStartUp
};

} // namespace harvlink
