#pragma once

#include <QIcon>
#include <QString>

// The images that windows ask for by name ("play", "pause", "triangle",
// "runningTimerIcon", ...), drawn for this application as SVG in the Qt
// resources. Each is loaded once and shared.
QIcon imageNamed(const QString& name);

// Makes the images reachable under ":/images/"; a window whose description
// names them calls this before it is built. Safe to call often.
void loadImageResources();
