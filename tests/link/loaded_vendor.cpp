// The stand-in that the provider has loaded as a library.

#include "tests/link/fake_vendor.h"

#include <QLibrary>

FakeVendor &vendor()
{
    static const auto loaded =
        reinterpret_cast<FakeVendor *(*)()>(QLibrary(QStringLiteral("CH341DLL")).resolve("fakeVendor"));
    return *loaded();
}
