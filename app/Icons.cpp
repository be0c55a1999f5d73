#include "app/Icons.h"

#include <QDir>
#include <QString>

namespace app {
namespace {

/// Every size the build rendered of `name` ("scourmill-16.png" ... "scourmill-256.png").
QIcon rendered(const QString& name) {
    QIcon icon;
    const QDir icons(":/icons");
    for (const QString& file : icons.entryList({name + "-*.png"}))
        icon.addFile(icons.filePath(file));
    return icon;
}

} // namespace

QIcon programIcon() {
    static const QIcon icon = rendered("scourmill");
    return icon;
}

QIcon cleaningIcon() {
    static const QIcon icon = rendered("cleaning");
    return icon;
}

} // namespace app
