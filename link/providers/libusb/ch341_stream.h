#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// Bytes that the CH341 takes and gives in one go.
constexpr size_t kCh341PacketSize = 32;

/// What a CH341 answers to a stream, a number of bytes for each packet that it sends. Every 32 bytes of the
/// stream stand for themselves, and those that read nothing are not answered.
std::vector<size_t> ch341AnswerSizes(const uint8_t *stream, size_t length);
