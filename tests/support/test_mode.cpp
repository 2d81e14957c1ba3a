// No test reads or writes what its user has set and recorded.

#include <QStandardPaths>

namespace {
void useOtherFolders()
{
    QStandardPaths::setTestModeEnabled(true);
}
} // namespace

Q_CONSTRUCTOR_FUNCTION(useOtherFolders)
