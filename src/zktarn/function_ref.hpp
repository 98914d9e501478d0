#pragma once

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

namespace zktarn {

/// A reference to a procedure that the caller supplies: one object address and one function
/// address.
///
/// It binds to any callable object, a mutable lambda included, and to any function. It never owns
/// the callable and never allocates.
///
/// Use it for parameters only. Bound to a temporary callable, it dangles at the end of the full
/// expression; bound to a function, it stays valid. To store a callable, use `std::function`.
///
/// It is never empty. Binding a null function pointer is undefined. An exception that leaves the
/// callable is undefined too: the library is built without unwinding.
template <class Signature>
class function_ref;

/// The same, for a signature with a result and arguments.
template <class Result, class... Args>
class function_ref<Result(Args...)> {
public:
    /// Refers to `callable`, which must outlive every call.
    template <class F>
        requires(!std::is_same_v<std::remove_cvref_t<F>, function_ref> &&
                 std::is_invocable_r_v<Result, F&, Args...>)
    function_ref(F&& callable)
    noexcept {
        using function = std::decay_t<F>;
        if constexpr (is_function_pointer<function>) {
            bound_.function = reinterpret_cast<void (*)()>(static_cast<function>(callable));
            call_ = [](target bound, Args... args) -> Result {
                return invoke(*reinterpret_cast<function>(bound.function),
                              std::forward<Args>(args)...);
            };
        } else {
            using object = std::remove_reference_t<F>;
            bound_.object = const_cast<void*>(static_cast<const void*>(std::addressof(callable)));
            call_ = [](target bound, Args... args) -> Result {
                return invoke(*static_cast<object*>(bound.object), std::forward<Args>(args)...);
            };
        }
    }

    /// Calls the callable.
    Result operator()(Args... args) const { return call_(bound_, std::forward<Args>(args)...); }

private:
    // A function address may not fit into a void*, so each kind of address has a member.
    union target {
        void* object;
        void (*function)();
    };

    template <class P>
    static constexpr bool is_function_pointer =
        std::is_pointer_v<P>&& std::is_function_v<std::remove_pointer_t<P>>;

    template <class F>
    static Result invoke(F& callable, Args&&... args) {
        if constexpr (std::is_void_v<Result>) {
            std::invoke(callable, std::forward<Args>(args)...);
        } else {
            return std::invoke(callable, std::forward<Args>(args)...);
        }
    }

    target bound_;
    Result (*call_)(target, Args...);
};

} // namespace zktarn
