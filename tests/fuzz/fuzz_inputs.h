#pragma once

#include <cstddef>
#include <cstdint>

/// What the fuzzers do with one input; ends the process when something that must hold does not. All need a
/// VirtualTime dispatcher and an application object.

/// Parses the input as Intel HEX text.
void fuzzHexToBin(const uint8_t *input, std::size_t size);

/// Runs a transfer whose receiver and owner act as the input tells them.
void fuzzYmodem(const uint8_t *input, std::size_t size);

/// Reads the input as a recording, and draws its first curve.
void fuzzRecording(const uint8_t *input, std::size_t size);

/// Reads the input as a stream of samples: the first byte chooses the format and the sizes of the pieces.
void fuzzStream(const uint8_t *input, std::size_t size);
