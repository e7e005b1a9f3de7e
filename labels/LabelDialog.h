#pragma once
// The dialog of a run of labels: the layout, the start position on a partly used sheet, the
// copies per label, for object labels the symbology, and where the labels go (preview, PDF
// file or printer).

#include "LabelCommands.h"

#include <QDialog>

class QComboBox;
class QLabel;
class QRadioButton;
class QSpinBox;

namespace qi {

class LabelDialog : public QDialog {
    Q_OBJECT
public:
    LabelDialog(const LabelDialogRequest& request, QWidget* parent = nullptr);

    /// What the controls say now.
    LabelDialogAnswer answer() const;

    QLabel* lbWhat;
    QComboBox* cbLayout;
    QSpinBox* spStart;
    QSpinBox* spKopien;
    QComboBox* cbSymbologie; ///< null for room labels
    QRadioButton* rbVorschau;
    QRadioButton* rbPdf;
    QRadioButton* rbDrucken;

    /// Shows the dialog modally: the answer, or nothing when cancelled.
    static std::optional<LabelDialogAnswer> ask(const LabelDialogRequest& request, QWidget* parent);
};

} // namespace qi
