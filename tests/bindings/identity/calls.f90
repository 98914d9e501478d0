! The procedures of via.h in Fortran: each calls the procedure of its name in the module.
module calls
    use, intrinsic :: iso_c_binding
    use zktarn_util
    implicit none

    !> The caller's callback and its own context, so that a callback goes through Fortran too.
    type :: supplier
        procedure(element_supplier), pointer, nopass :: get_element
        type(c_ptr) :: context
    end type

    type :: exchanger
        procedure(exchange_procedure), pointer, nopass :: exchange
        type(c_ptr) :: context
    end type

contains

    function via_instantiaterng(rng, seed) bind(c) result(answer)
        type(rng_state), intent(inout) :: rng
        integer(c_int32_t), value :: seed
        integer(flag_kind) :: answer
        answer = instantiaterng(rng, seed)
    end function

    subroutine via_deleterng(rng) bind(c)
        type(rng_state), intent(inout) :: rng
        call deleterng(rng)
    end subroutine

    function via_rand_number(rng) bind(c) result(answer)
        type(rng_state), intent(in) :: rng
        real(c_double) :: answer
        answer = rand_number(rng)
    end function

    function via_getrngstate(rng, state) bind(c) result(answer)
        type(rng_state), intent(in) :: rng
        type(c_ptr), intent(out) :: state
        integer(flag_kind) :: answer
        answer = getrngstate(rng, state)
    end function

    subroutine via_setrngstate(rng, state) bind(c)
        type(rng_state), intent(in) :: rng
        type(c_ptr), value :: state
        call setrngstate(rng, state)
    end subroutine

    subroutine via_deleterngstate(state) bind(c)
        type(c_ptr), value :: state
        call deleterngstate(state)
    end subroutine

    function via_fractional(x) bind(c) result(answer)
        real(c_double), value :: x
        real(c_double) :: answer
        answer = fractional(x)
    end function

    subroutine via_epsilon_is_int_scalar(x, scalar, eps, is_int, nearest) bind(c)
        real(c_double), value :: x
        real(c_double), value :: scalar
        real(c_double), value :: eps
        integer(flag_kind), intent(out) :: is_int
        real(c_double), intent(inout), optional :: nearest
        call epsilon_is_int_scalar(x, scalar, eps, is_int, nearest)
    end subroutine

    subroutine via_epsilon_is_int(x, eps, is_int, nearest) bind(c)
        real(c_double), value :: x
        real(c_double), value :: eps
        integer(flag_kind), intent(out) :: is_int
        real(c_double), intent(inout), optional :: nearest
        call epsilon_is_int(x, eps, is_int, nearest)
    end subroutine

    function via_epsilon_fractionality(x, eps) bind(c) result(answer)
        real(c_double), value :: x
        real(c_double), value :: eps
        real(c_double) :: answer
        answer = epsilon_fractionality(x, eps)
    end function

    function via_epsilon_floor(x, eps) bind(c) result(answer)
        real(c_double), value :: x
        real(c_double), value :: eps
        real(c_double) :: answer
        answer = epsilon_floor(x, eps)
    end function

    function via_epsilon_ceiling(x, eps) bind(c) result(answer)
        real(c_double), value :: x
        real(c_double), value :: eps
        real(c_double) :: answer
        answer = epsilon_ceiling(x, eps)
    end function

    function via_is_even_real(x, eps) bind(c) result(answer)
        real(c_double), value :: x
        real(c_double), value :: eps
        integer(flag_kind) :: answer
        answer = is_even_real(x, eps)
    end function

    subroutine via_xcopy_i1(source, destination, n) bind(c)
        integer(c_int8_t), intent(in) :: source(*)
        integer(c_int8_t), intent(inout) :: destination(*)
        integer(c_int32_t), value :: n
        call xcopy(source, destination, n)
    end subroutine

    subroutine via_xcopy_i4(source, destination, n) bind(c)
        integer(c_int32_t), intent(in) :: source(*)
        integer(c_int32_t), intent(inout) :: destination(*)
        integer(c_int32_t), value :: n
        call xcopy(source, destination, n)
    end subroutine

    subroutine via_xcopy_r8(source, destination, n) bind(c)
        real(c_double), intent(in) :: source(*)
        real(c_double), intent(inout) :: destination(*)
        integer(c_int32_t), value :: n
        call xcopy(source, destination, n)
    end subroutine

    subroutine via_xzero_i4(array, n) bind(c)
        integer(c_int32_t), intent(inout) :: array(*)
        integer(c_int32_t), value :: n
        call xzero(array, n)
    end subroutine

    subroutine via_xzero_r8(array, n) bind(c)
        real(c_double), intent(inout) :: array(*)
        integer(c_int32_t), value :: n
        call xzero(array, n)
    end subroutine

    subroutine via_get_rational_rep(x, eps, max_den, found, num, den) bind(c)
        real(c_double), value :: x
        real(c_double), value :: eps
        real(c_double), value :: max_den
        integer(flag_kind), intent(out) :: found
        real(c_double), intent(out) :: num
        real(c_double), intent(out) :: den
        call get_rational_rep(x, eps, max_den, found, num, den)
    end subroutine

    function via_xgcd_r8(a, b, eps) bind(c) result(answer)
        real(c_double), value :: a
        real(c_double), value :: b
        real(c_double), value :: eps
        real(c_double) :: answer
        answer = xgcd(a, b, eps)
    end function

    function via_xgcd_i4(a, b) bind(c) result(answer)
        integer(c_int32_t), value :: a
        integer(c_int32_t), value :: b
        integer(c_int32_t) :: answer
        answer = xgcd(a, b)
    end function

    function via_vector_get_coef(v, j) bind(c) result(answer)
        type(vector), intent(in) :: v
        integer(c_int32_t), value :: j
        real(c_double) :: answer
        answer = vector_get_coef(v, j)
    end function

    subroutine via_vector_add_nz(v, j, value) bind(c)
        type(vector), intent(inout) :: v
        integer(c_int32_t), value :: j
        real(c_double), intent(in), optional :: value
        call vector_add_nz(v, j, value)
    end subroutine

    subroutine via_vector_rem_nz(v, k) bind(c)
        type(vector), intent(inout) :: v
        integer(c_int32_t), value :: k
        call vector_rem_nz(v, k)
    end subroutine

    subroutine via_vector_clear(v) bind(c)
        type(vector), intent(inout) :: v
        call vector_clear(v)
    end subroutine

    subroutine via_vector_clean_index(v) bind(c)
        type(vector), intent(inout) :: v
        call vector_clean_index(v)
    end subroutine

    subroutine via_vector_rem_zeros(v) bind(c)
        type(vector), intent(inout) :: v
        call vector_rem_zeros(v)
    end subroutine

    subroutine via_vectors_combine(x, y, alpha, beta, tol) bind(c)
        type(vector), target :: x
        type(vector), target :: y
        real(c_double), value :: alpha
        real(c_double), value :: beta
        real(c_double), value :: tol
        call vectors_combine(x, y, alpha, beta, tol)
    end subroutine

    subroutine via_vectors_calc_sym_diff(x, y) bind(c)
        type(vector), target :: x
        type(vector), target :: y
        call vectors_calc_sym_diff(x, y)
    end subroutine

    subroutine via_vector_mod2(v, tol) bind(c)
        type(vector), intent(inout) :: v
        real(c_double), value :: tol
        call vector_mod2(v, tol)
    end subroutine

    function via_vectors_are_identical(a, b, tol) bind(c) result(answer)
        type(vector), intent(in) :: a
        type(vector), intent(in) :: b
        real(c_double), value :: tol
        integer(flag_kind) :: answer
        answer = vectors_are_identical(a, b, tol)
    end function

    function via_is_even_int(n) bind(c) result(answer)
        integer(c_int32_t), value :: n
        integer(flag_kind) :: answer
        answer = is_even_int(n)
    end function

    function via_vector_get_nz(v) bind(c) result(answer)
        type(vector), intent(in) :: v
        integer(c_int32_t) :: answer
        answer = vector_get_nz(v)
    end function

    subroutine via_vector_set_nz(v, n) bind(c)
        type(vector), intent(inout) :: v
        integer(c_int32_t), value :: n
        call vector_set_nz(v, n)
    end subroutine

    function via_vector_get_ind(v, k) bind(c) result(answer)
        type(vector), intent(in) :: v
        integer(c_int32_t), value :: k
        integer(c_int32_t) :: answer
        answer = vector_get_ind(v, k)
    end function

    subroutine via_vector_set_ind(v, k, j) bind(c)
        type(vector), intent(inout) :: v
        integer(c_int32_t), value :: k
        integer(c_int32_t), value :: j
        call vector_set_ind(v, k, j)
    end subroutine

    subroutine via_vector_set_coef(v, j, value) bind(c)
        type(vector), intent(inout) :: v
        integer(c_int32_t), value :: j
        real(c_double), value :: value
        call vector_set_coef(v, j, value)
    end subroutine

    function via_vector_is_elm(v, j) bind(c) result(answer)
        type(vector), intent(in) :: v
        integer(c_int32_t), value :: j
        integer(flag_kind) :: answer
        answer = vector_is_elm(v, j)
    end function

    subroutine via_vector_set_elm(v, j) bind(c)
        type(vector), intent(inout) :: v
        integer(c_int32_t), value :: j
        call vector_set_elm(v, j)
    end subroutine

    subroutine via_vector_rem_elm(v, j) bind(c)
        type(vector), intent(inout) :: v
        integer(c_int32_t), value :: j
        call vector_rem_elm(v, j)
    end subroutine

    subroutine via_rng_stateinitialise(first, count) bind(c)
        type(c_ptr), value :: first
        integer(c_int32_t), value :: count
        type(rng_state), pointer, contiguous :: records(:)
        call c_f_pointer(first, records, [max(0, count)])
        if (count == 1) then
            call rng_stateinitialise(records(1))
        else
            call rng_stateinitialise(records)
        end if
    end subroutine

    subroutine via_sort(first, last, exchange, context) bind(c)
        integer(c_int32_t), value :: first, last
        type(c_funptr), value :: exchange
        type(c_ptr), value :: context
        type(exchanger) :: both
        call c_f_procpointer(exchange, both%exchange)
        both%context = context
        call sort(first, last, pass_exchange, both)
    end subroutine

    function pass_exchange(a, b, context) bind(c) result(exchanged)
        integer(c_int32_t), value :: a, b
        type(c_ptr), value :: context
        integer(c_int64_t) :: exchanged
        type(exchanger), pointer :: both
        call c_f_pointer(context, both)
        exchanged = both%exchange(a, b, both%context)
    end function

    subroutine via_find_scalar_integral(n, get_element, context, eps, max_den, max_scalar, found, &
        scalar, skip_marked, selected_only) bind(c)
        integer(c_int32_t), value :: n
        type(c_funptr), value :: get_element
        type(c_ptr), value :: context
        real(c_double), value :: eps, max_den, max_scalar
        integer(flag_kind), intent(out) :: found
        real(c_double), intent(out) :: scalar
        integer(flag_kind), intent(in), optional :: skip_marked, selected_only
        type(supplier) :: both
        call c_f_procpointer(get_element, both%get_element)
        both%context = context
        call find_scalar_integral(n, pass_element, both, eps, max_den, max_scalar, found, scalar, &
            skip_marked, selected_only)
    end subroutine

    subroutine pass_element(index, value, marked, selected, context) bind(c)
        integer(c_int32_t), value :: index
        real(c_double), intent(out) :: value
        integer(c_int64_t), intent(out) :: marked, selected
        type(c_ptr), value :: context
        type(supplier), pointer :: both
        call c_f_pointer(context, both)
        call both%get_element(index, value, marked, selected, both%context)
    end subroutine
end module
