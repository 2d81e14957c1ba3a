#pragma once

#include "tests/link/usb/FakeUsbDevice.h"

#include <QtTest>

#include <functional>
#include <string>
#include <thread>

/// Plugs and unplugs a device of one family and waits for the notice of it, so that none of the other family
/// is still on its way. setNotify is the operation that registers the routine of the fence's family.
bool passFence(FakeUsbDevice &fence, uint32_t (*setNotify)(uint32_t, const char *, void (*)(uint32_t)));

/// The bytes 0, 1, 2, … up to the length.
QByteArray counted(int length);

/// Upper-case hexadecimal digits of the bytes.
QByteArray hexOf(const Bytes &bytes);
QList<QByteArray> hexOf(const std::vector<Bytes> &transfers);

/// While it lives, the process may not open the node, whoever runs it.
class RefusedAccess
{
public:
    RefusedAccess(const FakeUsbBus &bus, const std::string &node);
    ~RefusedAccess();
    RefusedAccess(const RefusedAccess &) = delete;
    RefusedAccess &operator=(const RefusedAccess &) = delete;

private:
    std::string m_path;
};

/// Runs the test object that make() makes on a fake bus that outlives everything. Ends with 77 where no bus
/// can be faked.
int runUsbTest(int argc, char **argv, const std::function<QObject *(FakeUsbBus &)> &make);
