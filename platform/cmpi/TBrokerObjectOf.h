// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <new>

#include "platform/cmpi/Border.h"
#include "platform/cmpi/EndedObjects.h"
#include "platform/cmpi/TScope.h"

namespace NZEPQEL20::cmpi {

/// What all encapsulated objects share: `TCMPI` is the type that providers see and `TDerived` the
/// one behind it, which has a static member kTable and can be copied by Clone().
template <class TDerived, class TCMPI>
class TBrokerObjectOf : public TBrokerObject, public TCMPI {
 public:
  /// The handle of an ended object.
  static constexpr const char* kEndedHandle = nullptr;

  TBrokerObjectOf() {
    // Old headers take an object whose first word is NULL for a null object.
    this->hdl = static_cast<const TCMPI*>(this);
    this->ft = &TDerived::kTable;
  }

  /// The object behind `object`.
  /// Errors: TBrokerFault (CMPI_RC_ERR_INVALID_HANDLE) for NULL and for what the broker never made.
  static TDerived& From(const TCMPI* object) {
    if (object == nullptr || object->hdl == TDerived::kEndedHandle || object->hdl == nullptr ||
        object->ft != &TDerived::kTable) {
      throw TBrokerFault(CMPI_RC_ERR_INVALID_HANDLE, "not an object of this broker");
    }
    // Providers hold their objects as const; the broker made every one of them non-const.
    return static_cast<TDerived&>(const_cast<TCMPI&>(*object));
  }

  /// The object behind `object`, null for NULL.
  static TDerived* FromOrNull(const TCMPI* object) {
    return object == nullptr ? nullptr : &From(object);
  }

  static void* operator new(std::size_t size) { return ::operator new(size); }

  /// An ended object leaves a shell for a while, which every function refuses: a provider that
  /// kept the pointer beyond the object's life meets that, and not what came in its place.
  static void operator delete(void* memory) noexcept {
    void* const head = static_cast<char*>(memory) + sizeof(TBrokerObject);
    new (head) TCMPI{TDerived::kEndedHandle, &TDerived::kTable};
    KeepShell(memory);
  }

  static CMPIStatus Release(TCMPI* object) noexcept {
    return AnswerStatus([&] { From(object).TBrokerObject::Release(); });
  }

  static TCMPI* Clone(const TCMPI* object, CMPIStatus* rc) noexcept {
    return Answer(rc, [&]() -> TCMPI* { return From(object).Copy().release(); });
  }
};

}  // namespace NZEPQEL20::cmpi
