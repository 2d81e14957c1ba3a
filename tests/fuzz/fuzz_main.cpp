// One fuzzer: FUZZ_INPUT is the function that gets its inputs.

#include "tests/fuzz/fuzz_inputs.h"
#include "tests/update/VirtualTime.h"

#include <QApplication>

/// Makes the application that a fuzzer runs in: silent, on a time of its own.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    VirtualTime::install();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    new QApplication(*argc, *argv); // lives as long as the process
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *input, std::size_t size)
{
    FUZZ_INPUT(input, size);
    return 0;
}
