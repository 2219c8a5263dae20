// SPDX-License-Identifier: BSD-3-Clause
#include "db/net.h"

#include <cassert>

#include "qlib/slabPool.h"

void* Net::operator new(size_t size)
{
    assert(size == sizeof(Net)); // no type derives from it
    static_cast<void>(size);
    return vireloce::SlabPool<Net>::take();
}

void Net::operator delete(void* place)
{
    vireloce::SlabPool<Net>::giveBack(place);
}
