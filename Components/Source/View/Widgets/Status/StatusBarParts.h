#ifndef STATUSBARPARTS_H
#define STATUSBARPARTS_H

#include "tzuicomponents_export.h"

class QHBoxLayout;
class QPushButton;
class QString;
class QWidget;

/// Pieces both status bars are built from.
namespace StatusBarParts {

/// A row without margins that lays out \a owner, \a spacing pixels between its items.
TZUICOMPONENTS_EXPORT QHBoxLayout* rowLayout(QWidget* owner, int spacing);
/// One of the 30 pixel wide icon buttons of the bar, named \a objectName for its sheet.
TZUICOMPONENTS_EXPORT QPushButton* iconButton(const QString& objectName, QWidget* parent);

} // namespace StatusBarParts

#endif
