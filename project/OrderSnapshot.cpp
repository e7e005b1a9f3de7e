#include "OrderSnapshot.h"

#include "Database.h"

namespace qi {

OrderSnapshot::OrderSnapshot(Database& order, const std::string& fileName) : path_(folder_.file(fileName))
{
    order.copyTo(path_);
}

} // namespace qi
