#include "scripting/mozjs/Allocations.h"

#include "scripting/mozjs/Mozjs.h"

#include <js/HeapAPI.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <link.h>
#include <malloc.h>
#include <optional>
#include <span>
#include <sys/mman.h>
#include <unistd.h>

namespace Allocations {

namespace {

/// From here on a request may be refused: the library expects that of what scripts make large, and of little
/// else.
constexpr size_t Large = 128 * 1024;

std::atomic<ptrdiff_t> Total = 0;
thread_local TLimit* Current = nullptr;

using TRelease = void (*)();

/// The program may have an allocator (cmake: morvane_allocator) that keeps what is free, however large. Null
/// where it is the C library's.
TRelease ReleaseOfOwnAllocator() {
    static const auto release =
        reinterpret_cast<TRelease>(::dlsym(RTLD_DEFAULT, "MallocExtension_ReleaseFreeMemory"));
    return release;
}

/// A growing array leaves a trail of such pieces.
void GiveBackBehind(size_t freed) {
    constexpr size_t WorthWhile = 4 * 1024 * 1024;
    if (freed >= WorthWhile)
        if (const TRelease release = ReleaseOfOwnAllocator())
            release();
}

} // namespace

/// What the library calls in the place of the C library's functions.
struct THooks {
    static bool Refuses(size_t size) {
        TLimit* limit = Current;
        if (limit == nullptr || size < Large || Held() + size <= limit->FRefusedBeyond ||
            JS::RuntimeHeapIsBusy()) // a collection can't do without
            return false;
        errno = ENOMEM;
        return true;
    }

    static void* Note(void* memory, size_t before = 0) {
        Total.fetch_add(ptrdiff_t(::malloc_usable_size(memory)) - ptrdiff_t(before),
                        std::memory_order_relaxed);
        if (TLimit* limit = Current; limit != nullptr && Held() > limit->FNoticedBeyond) {
            limit->FNoticedBeyond = ~size_t(0);
            limit->FNoticed();
        }
        return memory;
    }

    static void* Malloc(size_t size) { return Refuses(size) ? nullptr : Note(::malloc(size)); }
    static void* Calloc(size_t count, size_t size) {
        size_t bytes = 0;
        const bool refused = __builtin_mul_overflow(count, size, &bytes) || Refuses(bytes);
        return refused ? nullptr : Note(::calloc(count, size));
    }
    static void* Realloc(void* memory, size_t size) {
        const size_t before = ::malloc_usable_size(memory);
        if (size > before && Refuses(size)) // the old piece and the new one are there together
            return nullptr;
        void* moved = ::realloc(memory, size);
        if (moved == nullptr && size > 0) // what was there stays
            return nullptr;
        GiveBackBehind(before);
        return Note(moved, before);
    }
    static int PosixMemalign(void** memory, size_t alignment, size_t size) {
        const int error = Refuses(size) ? ENOMEM : ::posix_memalign(memory, alignment, size);
        if (error == 0)
            Note(*memory);
        return error;
    }
    static void* Memalign(size_t alignment, size_t size) {
        return Refuses(size) ? nullptr : Note(::memalign(alignment, size));
    }
    static char* Strdup(const char* text) { return static_cast<char*>(Note(::strdup(text))); }
    static void Free(void* memory) {
        const size_t size = ::malloc_usable_size(memory);
        Total.fetch_sub(ptrdiff_t(size), std::memory_order_relaxed);
        ::free(memory);
        GiveBackBehind(size);
    }
};

namespace {

struct TFunction {
    const char* Name;
    void* Hook;
    bool Needed;
};

const std::array Functions = {
    TFunction{"malloc", reinterpret_cast<void*>(THooks::Malloc), true},
    TFunction{"calloc", reinterpret_cast<void*>(THooks::Calloc), true},
    TFunction{"realloc", reinterpret_cast<void*>(THooks::Realloc), true},
    TFunction{"free", reinterpret_cast<void*>(THooks::Free), true},
    TFunction{"posix_memalign", reinterpret_cast<void*>(THooks::PosixMemalign), false},
    TFunction{"memalign", reinterpret_cast<void*>(THooks::Memalign), false},
    TFunction{"strdup", reinterpret_cast<void*>(THooks::Strdup), false},
};

/// A loaded library as the dynamic linker has it (System V ABI, "Dynamic Linking").
class TLibrary {
public:
    explicit TLibrary(const dl_phdr_info& info) : FBase(info.dlpi_addr) {
        for (const ElfW(Phdr) & part : std::span(info.dlpi_phdr, info.dlpi_phnum)) {
            if (part.p_type == PT_DYNAMIC)
                FDynamic = reinterpret_cast<const ElfW(Dyn)*>(FBase + part.p_vaddr);
            if (part.p_type == PT_GNU_RELRO)
                FReadOnly = {FBase + part.p_vaddr, FBase + part.p_vaddr + part.p_memsz};
        }
    }

    /// Makes every reference to one of the functions lead to its hook; how many of the needed ones there
    /// were.
    int Redirect() const {
        int needed = 0;
        for (const auto& [table, size] : {std::pair{DT_RELA, DT_RELASZ}, std::pair{DT_JMPREL, DT_PLTRELSZ}})
            for (const ElfW(Rela) & reference :
                 std::span(static_cast<const ElfW(Rela)*>(At(table)), Value(size) / sizeof(ElfW(Rela))))
                if (const TFunction* function = FunctionOf(reference)) {
                    Write(reinterpret_cast<void**>(FBase + reference.r_offset), function->Hook);
                    needed += function->Needed ? 1 : 0;
                }
        return needed;
    }

private:
    [[nodiscard]] size_t Value(ElfW(Sxword) tag) const {
        for (const ElfW(Dyn)* entry = FDynamic; entry->d_tag != DT_NULL; ++entry)
            if (entry->d_tag == tag)
                return entry->d_un.d_val;
        return 0;
    }
    /// The linker has made addresses of the offsets on some machines.
    [[nodiscard]] const void* At(ElfW(Sxword) tag) const {
        const size_t value = Value(tag);
        return reinterpret_cast<const void*>(value < FBase ? FBase + value : value);
    }
    [[nodiscard]] const TFunction* FunctionOf(const ElfW(Rela) & reference) const {
        const size_t index = sizeof(void*) == 8 ? reference.r_info >> 32 : reference.r_info >> 8;
        if (index == 0)
            return nullptr;
        const auto& symbol = static_cast<const ElfW(Sym)*>(At(DT_SYMTAB))[index];
        const char* name = static_cast<const char*>(At(DT_STRTAB)) + symbol.st_name;
        const auto* found = std::find_if(Functions.begin(), Functions.end(), [&](const TFunction& function) {
            return std::strcmp(function.Name, name) == 0;
        });
        return found == Functions.end() ? nullptr : found;
    }
    void Write(void** reference, void* hook) const {
        const auto at = reinterpret_cast<size_t>(reference);
        const auto page = size_t(::sysconf(_SC_PAGESIZE));
        const bool isProtected = at >= FReadOnly.first && at < FReadOnly.second / page * page;
        void* pages = reinterpret_cast<void*>(at / page * page);
        if (isProtected && ::mprotect(pages, page, PROT_READ | PROT_WRITE) != 0)
            throw Exception(QStringLiteral("Scripts cannot be run: their memory cannot be bounded."));
        *reference = hook;
        if (isProtected)
            (void)::mprotect(pages, page, PROT_READ);
    }

    size_t FBase;
    const ElfW(Dyn) * FDynamic = nullptr;
    std::pair<size_t, size_t>
        FReadOnly{}; ///< begin and end of what is protected but for a last piece of page
};

/// Whether the library with the given function is this one.
bool Holds(const dl_phdr_info& info, size_t address) {
    return std::any_of(info.dlpi_phdr, info.dlpi_phdr + info.dlpi_phnum, [&](const ElfW(Phdr) & part) {
        return part.p_type == PT_LOAD && address - (info.dlpi_addr + part.p_vaddr) < part.p_memsz;
    });
}

} // namespace

void Watch() {
    std::optional<TLibrary> library;
    ::dl_iterate_phdr(
        [](dl_phdr_info* info, size_t, void* found) {
            if (!Holds(*info, reinterpret_cast<size_t>(&JS_NewContext)))
                return 0;
            *static_cast<std::optional<TLibrary>*>(found) = TLibrary(*info);
            return 1;
        },
        &library);
    const auto needed = std::count_if(Functions.begin(), Functions.end(),
                                      [](const TFunction& function) { return function.Needed; });
    if (!library || library->Redirect() < needed)
        throw Exception(QStringLiteral("Scripts cannot be run: their memory cannot be bounded."));
}

size_t Held() {
    return size_t(std::max<ptrdiff_t>(Total.load(std::memory_order_relaxed), 0));
}

void GiveBack() {
    if (const TRelease release = ReleaseOfOwnAllocator())
        release();
    else
        ::malloc_trim(0);
}

TLimit::TLimit(std::function<void()> noticed)
    : FNoticed(std::move(noticed)), FOuter(std::exchange(Current, this)) {}

TLimit::~TLimit() {
    Current = FOuter;
}

void TLimit::Set(size_t refused, size_t noticed) {
    FRefusedBeyond = refused;
    FNoticedBeyond = noticed;
}

} // namespace Allocations
