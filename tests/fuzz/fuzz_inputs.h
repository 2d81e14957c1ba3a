#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// What the fuzzers do with one input; ends the process when something that must hold does not. All need a
/// VirtualTime dispatcher and a QApplication without a display.

/// Takes the input for a sample frame of the model that its first byte chooses, and for any frame.
void fuzzFrame(const uint8_t *input, std::size_t size);

/// Has the input cut into the packets of both bridges, and counts what they will answer.
void fuzzPacket(const uint8_t *input, std::size_t size);

/// Parses the input as Intel HEX text.
void fuzzHexToBin(const uint8_t *input, std::size_t size);

/// Takes the input for what sensors and noise say to the steps of the worker, on a bridge or a serial line.
void fuzzWorker(const uint8_t *input, std::size_t size);

/// Takes the input for samples and answers to a panel.
void fuzzPanel(const uint8_t *input, std::size_t size);

/// Takes the input for what names a bridge.
void fuzzDevicePath(const uint8_t *input, std::size_t size);

/// Reads the input as the file of the settings, after a value that is to be stored there.
void fuzzSettings(const uint8_t *input, std::size_t size);

/// Runs a transfer whose receiver and owner act as the input tells them.
void fuzzYmodem(const uint8_t *input, std::size_t size);

/// Reads the input as a recording, and draws its first curve.
void fuzzRecording(const uint8_t *input, std::size_t size);

/// Reads the input as a stream of samples: the first byte chooses the format and the sizes of the pieces.
void fuzzStream(const uint8_t *input, std::size_t size);

/// Ends the process when the condition does not hold, so that a fuzzer keeps the input.
inline void fuzzCheck(bool condition, const char *what)
{
    if (condition)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}
