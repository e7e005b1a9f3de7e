#pragma once
// An order database as the overview reads it: a private copy of the file as it stood when
// it was opened (OrderSnapshot; a change that was cut off is read as it was before it,
// RolledBackCopy), whether its difference list fits its data, and where it does not (when
// asked for) its fresh evaluation on a copy of the copy. The order's file is locked only while it is
// copied: a window working in the order meanwhile is not held up by the overview.

#include "DifferenceListState.h"
#include "FreshEvaluation.h"
#include "OrderSnapshot.h"
#include "RolledBackCopy.h"

#include <memory>
#include <string>

namespace qi {

class CAuftragDb;
class Database;
class QGebDb;
class QuarnRooms;
class ScriptedUserInteraction;
struct Settings;

struct OrderSource {
    OrderSource();
    ~OrderSource();

    std::unique_ptr<RolledBackCopy> putBack;
    std::unique_ptr<OrderSnapshot> snapshot;
    std::string fileName; ///< the name of the order's file, which its copies keep
    std::unique_ptr<ScriptedUserInteraction> quiet;
    std::unique_ptr<CAuftragDb> order; ///< the private copy, opened only for reading
    ListState state = ListState::Fits;
    std::unique_ptr<FreshEvaluation> evaluation;
    std::string failure; ///< why the fresh evaluation failed ('' when it did not)
    std::string error;   ///< why the order could not be read ('' when it could)

    Database& data();
};

/// Opens the order database `file` through a private copy and tells whether its difference
/// list fits its data. Never throws: a failure is told in the source.
std::unique_ptr<OrderSource> checkOrderSource(const std::string& file, const QuarnRooms& quarn);

/// True when `source` was read, its list does not fit and it is not evaluated afresh yet.
bool needsFreshEvaluation(const OrderSource& source);

/// Evaluates `source` afresh where it needs it (needsFreshEvaluation), with Quarn's building
/// component `geb`. Never throws: a failure is told in the source.
void evaluateAfresh(OrderSource& source, const Settings& settings, QGebDb& geb);

/// checkOrderSource, then evaluateAfresh when `fresh`.
std::unique_ptr<OrderSource> openOrderSource(const std::string& file, const Settings& settings, QGebDb& geb,
                                             const QuarnRooms& quarn, bool fresh);

} // namespace qi
