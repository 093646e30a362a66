#include "Platform/Simulated/SimulatedDefaultsStore.h"

#include "Platform/Simulated/SimulatedDesktop.h"

#include <utility>

namespace kestrove {

void SimulatedDefaultsStore::setValue(std::string key, Value value) {
    m_desktop.requireMainThread("setting a stored value");
    m_values.insert_or_assign(std::move(key), std::move(value));
}

void SimulatedDefaultsStore::setWritable(bool isWritable) {
    m_desktop.requireMainThread("setWritable");
    m_isWritable = isWritable;
}

} // namespace kestrove
