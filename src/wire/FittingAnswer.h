#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "wire/Packets.h"

/// @file
/// How a datagram is judged, whoever asked: the engine of a connection or the one of a fleet.

namespace harvlink {

inline constexpr std::uint8_t AnswerFlag = 0x80; ///< a controller sets it in the service that it answers

inline bool IsMagic(CommonHeader const& header) {
    // Compared as one number: arrays would be compared by a call of the C library.
    return std::bit_cast<std::uint32_t>(header.magic) == std::bit_cast<std::uint32_t>(CommonHeader{}.magic);
}

/// What was asked.
struct Asked {
    CommonHeader const& header;
    SubHeaderForSending const& subHeader;
};

/// What came, `length` bytes long on the wire.
struct Answer {
    CommonHeader const& header;
    SubHeaderForReceiving const& subHeader;
    std::size_t length;
};

/// Whether magic, division, header size, service and payload size fit the request, see Rule::FittingAnswer. The number is
/// compared elsewhere.
inline bool FitsRequest(Asked const& asked, Answer const& answer) {
    std::uint8_t const service = answer.subHeader.service;
    // Some controllers answer with the service as it was asked.
    bool const isService = service == asked.subHeader.service || service == (asked.subHeader.service | AnswerFlag);
    return answer.length >= HeaderSize && IsMagic(answer.header) && answer.header.headerSize == HeaderSize &&
           answer.header.division == asked.header.division && isService &&
           answer.header.payloadSize == answer.length - HeaderSize;
}

/// Whether the request is a block of a file on its way to the controller.
inline bool IsBlockSent(Asked const& asked) {
    return asked.header.ack != 0 && asked.header.division == Division::FileControl &&
           asked.subHeader.service == static_cast<std::uint8_t>(FileServices::LoadFile);
}

/// Whether it answers another block of the transfer than the one that was sent or acknowledged. Number 0 says nothing,
/// unless the controller is known to number what it answers to blocks. A refusal ends the transfer, so it can't be one of
/// before.
inline bool AnswersOtherBlock(Asked const& asked, Answer const& answer, bool areUploadsNumbered) {
    std::uint32_t const number = answer.header.blockNumber & ~LastBlockFlag;
    if (asked.header.ack == 0 || answer.subHeader.status != 0 || answer.subHeader.addedStatusSize != 0) {
        return false;
    }
    if (number == 0) {
        return IsBlockSent(asked) && areUploadsNumbered;
    }
    std::uint32_t const sent = asked.header.blockNumber & ~LastBlockFlag;
    return IsBlockSent(asked) ? number != sent : number <= sent;
}

/// Whether it says nothing about the block that it answers and could be a second answer to the request that opened the upload:
/// the first block went out, and the controller has not numbered any answer yet.
inline bool MayAnswerOpening(Asked const& asked, Answer const& answer, bool areUploadsNumbered) {
    bool const isFirst = IsBlockSent(asked) && (asked.header.blockNumber & ~LastBlockFlag) == 1;
    bool const saysNothing =
        answer.header.blockNumber == 0 && answer.subHeader.status == 0 && answer.subHeader.addedStatusSize == 0;
    return isFirst && saysNothing && !areUploadsNumbered;
}

/// The code that an answer reports: its added status, or its status byte if that is 0. 0 for success.
inline int AnsweredCode(SubHeaderForReceiving const& subHeader) {
    if (subHeader.status == 0 && subHeader.addedStatusSize == 0) {
        return 0;
    }
    return subHeader.addedStatus != 0 ? int{subHeader.addedStatus} : int{subHeader.status};
}

} // namespace harvlink
