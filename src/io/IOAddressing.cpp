#include <algorithm>

#include "io/IOImplementation.h"
#include "status/ErrorTables.h"
#include "wire/Guarded.h"
#include "wire/HelperFunction.h"

// Which addresses exist, and by which command they are written.

namespace harvlink {
namespace {

StatusInfo Failed(IOError error) {
    return StatusInformation(static_cast<int>(error), IOErrorTable.Find(error).value());
}

} // namespace

IOImplementation::IOImplementation(NetworkManager* manager) : networkManager(manager) {
    SetMinMaxVals();
}

void IOImplementation::SetMinMaxVals() {
    for (std::size_t type = 0; type < ranges.size(); ++type) {
        ranges[type] = GetAddressRange(static_cast<IOType>(type), networkManager->controllerVersion);
    }
}

IOSelection IOImplementation::GetIOSelection(IOType type) const {
    return harvlink::GetIOSelection(type, networkManager->controllerVersion);
}

bool IOImplementation::IsGroupValid(IOType type, IOSelection selection, unsigned short group) const {
    // The low groups of general inputs exist on every controller.
    return (type == IOType::GeneralInput && group < 10) || (selection.baseNumber != 0 && group <= selection.groupCount);
}

bool IOImplementation::IsAddressValid(unsigned int address, bool& isNetworkInput, bool& isInterfacePanel,
                                      bool& isGeneralOutput) const {
    isNetworkInput = Range(IOType::NetworkInput).Contains(address);
    isInterfacePanel = !isNetworkInput && Range(IOType::InterfacePanelInput).Contains(address);
    isGeneralOutput = !isNetworkInput && !isInterfacePanel && Range(IOType::GeneralOutput).Contains(address);
    return std::ranges::any_of(ranges, [&](AddressRange const& range) { return range.Contains(address); });
}

WriteCommand IOImplementation::CheckAddressWriteable(unsigned int address, StatusInfo& status,
                                                     bool isBitAddress) const {
    bool isNetworkInput = false;
    bool isInterfacePanel = false;
    bool isGeneralOutput = false;
    bool const isAligned = isBitAddress || address % 10 == 0;
    if (!isAligned || !IsAddressValid(address, isNetworkInput, isInterfacePanel, isGeneralOutput)) {
        status = Failed(IOError::InvalidAddress);
        return WriteCommand::Refused;
    }
    if (isNetworkInput) {
        status = StatusInformation(ErrorStatusCodes::Ok);
        return WriteCommand::Group;
    }
    if (!HelperFunction::CheckUAPICompatible(networkManager->controllerVersion)) {
        status = Failed(IOError::InvalidAddress);
        return WriteCommand::Refused;
    }
    if (isGeneralOutput || isInterfacePanel) {
        status = StatusInformation(ErrorStatusCodes::Ok);
        return WriteCommand::OneSignal;
    }
    status = Failed(IOError::AddressNotWritable);
    return WriteCommand::Refused;
}

unsigned int IOImplementation::ConvertIOGroupToBitAddress(IOType type, unsigned short group, unsigned char bit,
                                                          StatusInfo& status) {
    IOSelection const selection = GetIOSelection(type);
    status = Guarded(*networkManager, [&] {
        if (!IsGroupValid(type, selection, group)) {
            return StatusInformation(ErrorStatusCodes::InvalidIOGroup);
        }
        if (bit > 7) {
            return StatusInformation(ErrorStatusCodes::InvalidBitValue);
        }
        return StatusInformation(group == 0 ? ErrorStatusCodes::InvalidIOGroup : ErrorStatusCodes::Ok);
    });
    if (status.StatusCode != 0) {
        return 0;
    }
    unsigned int const address = (selection.baseNumber + group) * 10U + bit;
    return type == IOType::GeneralInput ? address - 10 : address;
}

} // namespace harvlink
