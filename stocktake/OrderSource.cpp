#include "OrderSource.h"

#include "CAuftragDb.h"
#include "FileSystem.h"
#include "ScriptedUserInteraction.h"

#include <stdexcept>

namespace qi {

namespace {

/// `order` opened only for reading, checked as an order database; std::runtime_error when it is none.
void openChecked(CAuftragDb& order, const std::string& path)
{
    order.setDbPath(path);
    order.setOpenReadOnly(Value(std::int64_t{-1}));
    if (!order.OpenCheckedDb())
        throw std::runtime_error(order.LastError());
}

} // namespace

OrderSource::OrderSource() : quiet(std::make_unique<ScriptedUserInteraction>()) {}

OrderSource::~OrderSource()
{
    // The copies go after the connections to them.
    evaluation.reset();
    order.reset();
}

Database& OrderSource::data() { return *order->database(); }

std::unique_ptr<OrderSource> openOrderSource(const std::string& file, const Settings& settings, QGebDb& geb,
                                             const QuarnRooms& quarn, bool fresh)
{
    auto source = std::make_unique<OrderSource>();
    try {
        source->order = std::make_unique<CAuftragDb>(*source->quiet);
        if (hasJournal(file)) {
            source->putBack = std::make_unique<RolledBackCopy>(file);
            openChecked(*source->order, source->putBack->path());
        } else {
            // Checked where it lies, so that a file that is no order database is told by its own name.
            openChecked(*source->order, file);
            source->snapshot = std::make_unique<OrderSnapshot>(source->data(), fileNamePart(file));
            source->order = std::make_unique<CAuftragDb>(*source->quiet);
            openChecked(*source->order, source->snapshot->path());
        }
        source->state = differenceListState(source->data(), quarn);
        if (source->state != ListState::Fits && fresh) {
            source->evaluation = std::make_unique<FreshEvaluation>(source->data(), fileNamePart(file), settings, geb);
            if (source->evaluation->failed()) {
                source->failure = source->evaluation->error();
                source->evaluation.reset();
            }
        }
    } catch (const std::exception& e) {
        source->error = e.what();
    }
    return source;
}

} // namespace qi
