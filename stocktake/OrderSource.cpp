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

std::unique_ptr<OrderSource> checkOrderSource(const std::string& file, const QuarnRooms& quarn)
{
    auto source = std::make_unique<OrderSource>();
    source->fileName = fileNamePart(file);
    try {
        source->order = std::make_unique<CAuftragDb>(*source->quiet);
        if (hasJournal(file)) {
            source->putBack = std::make_unique<RolledBackCopy>(file);
            openChecked(*source->order, source->putBack->path());
        } else {
            // Checked where it lies, so that a file that is no order database is told by its own name.
            openChecked(*source->order, file);
            source->snapshot = std::make_unique<OrderSnapshot>(source->data(), source->fileName);
            source->order = std::make_unique<CAuftragDb>(*source->quiet);
            openChecked(*source->order, source->snapshot->path());
        }
        source->state = differenceListState(source->data(), quarn);
    } catch (const std::exception& e) {
        source->error = e.what();
    }
    return source;
}

bool needsFreshEvaluation(const OrderSource& source)
{
    return source.error.empty() && source.state != ListState::Fits && !source.evaluation && source.failure.empty();
}

void evaluateAfresh(OrderSource& source, const Settings& settings, QGebDb& geb)
{
    if (!needsFreshEvaluation(source))
        return;
    source.evaluation = std::make_unique<FreshEvaluation>(source.data(), source.fileName, settings, geb);
    if (source.evaluation->failed()) {
        source.failure = source.evaluation->error();
        source.evaluation.reset();
    }
}

std::unique_ptr<OrderSource> openOrderSource(const std::string& file, const Settings& settings, QGebDb& geb,
                                             const QuarnRooms& quarn, bool fresh)
{
    std::unique_ptr<OrderSource> source = checkOrderSource(file, quarn);
    if (fresh)
        evaluateAfresh(*source, settings, geb);
    return source;
}

} // namespace qi
