#include "ui/tkImages.h"

#include <QHash>

// The resources live in a static library, which the linker would drop
// unless something refers to them.
void loadImageResources() {
    static const bool loaded = [] {
        Q_INIT_RESOURCE(chronolet);
        return true;
    }();
    (void)loaded;
}

QIcon imageNamed(const QString& name) {
    loadImageResources();
    static QHash<QString, QIcon> cache;
    auto found = cache.find(name);
    if (found == cache.end()) {
        found = cache.insert(name, QIcon(QStringLiteral(":/images/%1.svg").arg(name)));
    }
    return *found;
}
