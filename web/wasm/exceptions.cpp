// The run-time part of C++ exceptions: Debian's libc++abi for WebAssembly has none.
//
// Follows the Itanium C++ ABI (https://itanium-cxx-abi.github.io/cxx-abi/abi-eh.html) as far as one thread
// needs it. The unwinding itself is WebAssembly's: a landing pad is entered with the thrown object, stores
// which of the function's pads it is, and asks `_Unwind_CallPersonality` which of the pad's clauses matches.
// The exception object of the ABI is the thrown object itself; a header lies in front of it.
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <typeinfo>

// The tag that all exceptions of C++ have.
__asm__(
    ".tagtype __cpp_exception i32\n"
    ".globl __cpp_exception\n"
    "__cpp_exception:\n");

namespace __cxxabiv1 {

/// The part of libc++abi's type descriptions that finds a matching clause; defined there.
class __shim_type_info : public std::type_info {
  public:
    ~__shim_type_info() override;
    virtual void noop1() const;
    virtual void noop2() const;
    virtual bool can_catch(const __shim_type_info* thrown, void*& object) const = 0;
};

}  // namespace __cxxabiv1

namespace {

using TypeInfo = __cxxabiv1::__shim_type_info;

/// A destructor; on WebAssembly it returns its argument.
using Destroy = void* (*)(void*);

struct alignas(16) Header {
    const TypeInfo* type;
    Destroy destroy;
    void* adjusted;  ///< the thrown object as the clause that caught it sees it
    Header* outer;   ///< the exception that was caught before this one and is still handled
    int handlers;    ///< clauses that are running; negative while it is thrown again from one

    void* Object() { return this + 1; }
    static Header* Of(void* object) { return static_cast<Header*>(object) - 1; }
};

Header* caught = nullptr;

// For std::bad_alloc when there is no memory left. One is enough: nothing throws while it is handled.
alignas(Header) constinit uint8_t reserve[sizeof(Header) + 64];
bool reserveTaken = false;

// ---- the tables that the compiler writes for each function ------------------------------------------

class TableReader {
  public:
    explicit TableReader(const uint8_t* at) : at_(at) {}

    const uint8_t* At() const { return at_; }
    uint8_t Byte() { return *at_++; }

    uint32_t Unsigned() {
        uint32_t value = 0;
        unsigned shift = 0;
        uint8_t byte = 0;
        do {
            byte = Byte();
            value |= static_cast<uint32_t>(byte & 0x7F) << shift;
            shift += 7;
        } while ((byte & 0x80) != 0);
        return value;
    }

    int32_t Signed() {
        uint32_t value = 0;
        unsigned shift = 0;
        uint8_t byte = 0;
        do {
            byte = Byte();
            value |= static_cast<uint32_t>(byte & 0x7F) << shift;
            shift += 7;
        } while ((byte & 0x80) != 0);
        if ((byte & 0x40) != 0 && shift < 32) {
            value |= ~uint32_t{0} << shift;
        }
        return static_cast<int32_t>(value);
    }

  private:
    const uint8_t* at_;
};

/// The number of the clause of landing pad `pad` that takes the exception; 0 for none.
int32_t MatchingClause(const uint8_t* table, uint32_t pad, Header& header) {
    constexpr uint8_t kOmitted = 0xFF;
    TableReader reader(table);
    if (reader.Byte() != kOmitted) {
        std::abort();  // a base address, which WebAssembly's tables do not have
    }
    const TypeInfo* const* types = nullptr;  // its end; clause n is the nth before it
    if (reader.Byte() != kOmitted) {
        const uint32_t distance = reader.Unsigned();
        types = reinterpret_cast<const TypeInfo* const*>(reader.At() + distance);
    }
    reader.Byte();  // the encoding of the pads, always ULEB128
    const uint32_t padBytes = reader.Unsigned();
    const uint8_t* const actions = reader.At() + padBytes;

    uint32_t action = 0;
    for (uint32_t i = 0; i <= pad; ++i) {
        reader.Unsigned();
        action = reader.Unsigned();
    }
    while (action != 0) {
        TableReader record(actions + (action - 1));
        const int32_t clause = record.Signed();
        const uint8_t* const base = record.At();
        const int32_t distance = record.Signed();
        if (clause > 0) {
            const TypeInfo* const type = *(types - clause);
            void* object = header.Object();
            if (type == nullptr || type->can_catch(header.type, object)) {
                header.adjusted = object;
                return clause;
            }
        }
        action = distance == 0 ? 0 : static_cast<uint32_t>(base + distance - actions) + 1;
    }
    return 0;
}

}  // namespace

extern "C" {

/// What a landing pad stores before it asks, and reads afterwards. The compiler knows its name and layout.
struct LandingPadContext {
    uint32_t pad;
    const uint8_t* table;
    int32_t clause;
};
thread_local constinit LandingPadContext __wasm_lpad_context = {};

int _Unwind_CallPersonality(void* object) {
    __wasm_lpad_context.clause =
        MatchingClause(__wasm_lpad_context.table, __wasm_lpad_context.pad, *Header::Of(object));
    return 0;
}

void* __cxa_allocate_exception(size_t size) noexcept {
    const size_t whole = sizeof(Header) + size;
    void* memory = std::malloc(whole);
    if (memory == nullptr) {
        if (reserveTaken || whole > sizeof reserve) {
            std::terminate();
        }
        reserveTaken = true;
        memory = reserve;
    }
    return static_cast<Header*>(memory)->Object();
}

void __cxa_free_exception(void* object) noexcept {
    Header* const header = Header::Of(object);
    if (static_cast<void*>(header) == reserve) {
        reserveTaken = false;
    } else {
        std::free(header);
    }
}

[[noreturn]] void __cxa_throw(void* object, std::type_info* type, Destroy destroy) {
    *Header::Of(object) = {static_cast<const TypeInfo*>(type), destroy, object, nullptr, 0};
    __builtin_wasm_throw(0, object);
}

void* __cxa_get_exception_ptr(void* object) noexcept {
    return Header::Of(object)->adjusted;
}

void* __cxa_begin_catch(void* object) noexcept {
    Header* const header = Header::Of(object);
    header->handlers = (header->handlers < 0 ? -header->handlers : header->handlers) + 1;
    if (header != caught) {
        header->outer = caught;
        caught = header;
    }
    return header->adjusted;
}

void __cxa_end_catch() {
    Header* const header = caught;
    if (header == nullptr) {
        return;
    }
    if (header->handlers < 0) {
        // It was thrown again, and goes on beyond this clause.
        if (++header->handlers == 0) {
            caught = header->outer;
        }
    } else if (--header->handlers == 0) {
        caught = header->outer;
        if (header->destroy != nullptr) {
            header->destroy(header->Object());
        }
        __cxa_free_exception(header->Object());
    }
}

[[noreturn]] void __cxa_rethrow() {
    if (caught == nullptr) {
        std::terminate();
    }
    caught->handlers = -caught->handlers;
    __builtin_wasm_throw(0, caught->Object());
}

}  // extern "C"
