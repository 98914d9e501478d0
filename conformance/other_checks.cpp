#include <cstdint>

#include "checks.hpp"
#include "sample_struct.hpp"
#include "zktarn/host/libqv.hpp"
#include "zktarn/host/libut.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::host_conformance {

void check_interrupts_and_assertions() {
    check("utIsInterruptPending", "returns false at every poll without an interrupt", [] {
        for (int i = 0; i < 1000; ++i) {
            if (host::utIsInterruptPending()) {
                return finding("true");
            }
        }
        return finding();
    });
    check("assertOptim", "returns for a true condition", [] {
        host::assertOptim(true);
        return finding();
    });
}

void check_nulls() {
    check("getRngStateOptim", "accepts a null generator", [] {
        void* const state = host::getRngStateOptim(nullptr);
        if (state != nullptr) {
            note("getRngStateOptim", "returns a snapshot of a null generator; null is better");
            host::deleteRngStateOptim(state);
        }
        return finding();
    });
    check("qvcreatestring800_", "accepts a null address for no characters", [] {
        const host::array_handle made = host::qvcreatestring800_(nullptr, 0);
        if (made != 0) {
            host::qvdestroyarray800_(made);
        }
        return expect(made != 0, "the handle is 0");
    });
    check("qvcopyreal8toptr800_", "accepts a null address for no numbers", [] {
        const std::int64_t none = 0;
        const host::array_handle column = make_matrix(0, 1);
        if (column == 0) {
            return finding("the handle is 0");
        }
        host::qvcopyreal8toptr800_(nullptr, host::qvgetpr800_(column), none);
        host::qvdestroyarray800_(column);
        return finding();
    });
    check("qvFreeExOptim", "accepts null", [] {
        host::qvFreeExOptim(nullptr);
        return finding();
    });
}

void check_host(const settings& wanted) {
    check_memory();
    check_generators();
    check_arrays();
    check_function(wanted);
    check_console(wanted);
    check_interrupts_and_assertions();
    check_nulls();
}

} // namespace zktarn::host_conformance
