// SPDX-License-Identifier: BSD-3-Clause
#include "db/component.h"

#include <cassert>

#include "qlib/slabPool.h"

std::map<std::string, Component::Orient_e> Component::s_orientMap;

void* Component::operator new(size_t size)
{
    assert(size == sizeof(Component)); // no type derives from it
    static_cast<void>(size);
    return vireloce::SlabPool<Component>::take();
}

void Component::operator delete(void* place)
{
    vireloce::SlabPool<Component>::giveBack(place);
}
