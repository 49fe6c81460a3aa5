#include <numeric>

#include "behaviour/Operation.h"

namespace harvlink::test {

Bytes Pattern(std::size_t size) {
    Bytes bytes(size);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{1});
    return bytes;
}

Operations AllOperations() {
    Operations table;
    AddStateOperations(table);
    AddVariableOperations(table);
    AddSignalOperations(table);
    AddSequenceOperations(table);
    return table;
}

} // namespace harvlink::test
