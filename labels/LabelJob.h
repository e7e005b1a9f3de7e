#pragma once
// One run of labels, as the command line and the windows make it: the layout chosen by name
// from the template folder, the start position on a partly used sheet, the copies per label
// and (for object labels) the symbology; the sheets made and checked, and the message that
// tells what was written.

#include "LabelSheets.h"

#include <string>
#include <vector>

namespace qi {

struct Settings;

/// What the person chose for a run of labels.
struct LabelChoice {
    std::string layout; ///< a layout's display name or file name
    int start = 1;      ///< first free place on the first sheet, from 1
    int copies = 1;     ///< copies of each label
    Symbology symbology = Symbology::Code128;
};

/// The most copies of one label.
inline constexpr int kMaxCopies = 99;

/// The template folder the layouts lie in ("<program folder>\Leeres Projekt").
std::string labelTemplateDir(const Settings& settings);

/// Why the start position or the copies can't be taken for `layout` (German), or empty.
std::string refusedChoice(const LabelLayout& layout, const LabelChoice& choice);

/// The labels on the sheets of the chosen layout. LabelError when the layout is unknown or a
/// barcode can't be printed; LabelSourceError when the start, the copies or the count of labels
/// can't be taken.
LabelSheets makeLabelSheets(const Settings& settings, const LabelChoice& choice, std::vector<Label> labels);

/// "Etiketten geschrieben: PFAD (N Etiketten, M Seiten)."
std::string labelsWrittenText(const std::string& path, int labels, int pages);

} // namespace qi
