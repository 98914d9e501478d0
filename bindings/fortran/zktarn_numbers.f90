!> Integrality, fractions, divisors, the scalar search, sorting, plain arrays.
module zktarn_numbers
    use, intrinsic :: iso_c_binding
    use zktarn_types
    implicit none
    private

    ! sorting_mod

    interface
        subroutine sort(first, last, exchange, context) bind(c, name="zktarn_sort")
            import :: c_int32_t, exchange_procedure
            integer(c_int32_t), value :: first, last
            procedure(exchange_procedure) :: exchange
            type(*), intent(inout), optional :: context
        end subroutine
    end interface
    public :: sort

    ! util

    interface
        function fractional(x) bind(c, name="zktarn_fractional")
            import :: c_double
            real(c_double), value :: x
            real(c_double) :: fractional
        end function

        subroutine epsilon_is_int_scalar(x, scalar, eps, is_int, nearest) &
            bind(c, name="zktarn_epsilon_is_int_scalar")
            import :: c_double, c_int64_t
            real(c_double), value :: x, scalar, eps
            integer(c_int64_t), intent(out) :: is_int
            real(c_double), intent(inout), optional :: nearest
        end subroutine

        subroutine epsilon_is_int(x, eps, is_int, nearest) bind(c, name="zktarn_epsilon_is_int")
            import :: c_double, c_int64_t
            real(c_double), value :: x, eps
            integer(c_int64_t), intent(out) :: is_int
            real(c_double), intent(inout), optional :: nearest
        end subroutine

        function epsilon_fractionality(x, eps) bind(c, name="zktarn_epsilon_fractionality")
            import :: c_double
            real(c_double), value :: x, eps
            real(c_double) :: epsilon_fractionality
        end function

        function epsilon_floor(x, eps) bind(c, name="zktarn_epsilon_floor")
            import :: c_double
            real(c_double), value :: x, eps
            real(c_double) :: epsilon_floor
        end function

        function epsilon_ceiling(x, eps) bind(c, name="zktarn_epsilon_ceiling")
            import :: c_double
            real(c_double), value :: x, eps
            real(c_double) :: epsilon_ceiling
        end function

        function is_even_real(x, eps) bind(c, name="zktarn_is_even_real")
            import :: c_double, c_int64_t
            real(c_double), value :: x, eps
            integer(c_int64_t) :: is_even_real
        end function

        function is_even_int(n) bind(c, name="zktarn_is_even_int")
            import :: c_int32_t, c_int64_t
            integer(c_int32_t), value :: n
            integer(c_int64_t) :: is_even_int
        end function

        subroutine xcopy_i1(source, destination, n) bind(c, name="zktarn_xcopy_i1")
            import :: c_int8_t, c_int32_t
            integer(c_int8_t), intent(in) :: source(*)
            integer(c_int8_t), intent(inout) :: destination(*)
            integer(c_int32_t), value :: n
        end subroutine

        subroutine xcopy_i4(source, destination, n) bind(c, name="zktarn_xcopy_i4")
            import :: c_int32_t
            integer(c_int32_t), intent(in) :: source(*)
            integer(c_int32_t), intent(inout) :: destination(*)
            integer(c_int32_t), value :: n
        end subroutine

        subroutine xcopy_r8(source, destination, n) bind(c, name="zktarn_xcopy_r8")
            import :: c_double, c_int32_t
            real(c_double), intent(in) :: source(*)
            real(c_double), intent(inout) :: destination(*)
            integer(c_int32_t), value :: n
        end subroutine

        subroutine xzero_i4(array, n) bind(c, name="zktarn_xzero_i4")
            import :: c_int32_t
            integer(c_int32_t), intent(inout) :: array(*)
            integer(c_int32_t), value :: n
        end subroutine

        subroutine xzero_r8(array, n) bind(c, name="zktarn_xzero_r8")
            import :: c_double, c_int32_t
            real(c_double), intent(inout) :: array(*)
            integer(c_int32_t), value :: n
        end subroutine

        subroutine get_rational_rep(x, eps, max_den, found, num, den) &
            bind(c, name="zktarn_get_rational_rep")
            import :: c_double, c_int64_t
            real(c_double), value :: x, eps, max_den
            integer(c_int64_t), intent(out) :: found
            real(c_double), intent(out) :: num, den
        end subroutine

        function xgcd_r8(a, b, eps) bind(c, name="zktarn_xgcd_r8")
            import :: c_double
            real(c_double), value :: a, b, eps
            real(c_double) :: xgcd_r8
        end function

        function xgcd_i4(a, b) bind(c, name="zktarn_xgcd_i4")
            import :: c_int32_t
            integer(c_int32_t), value :: a, b
            integer(c_int32_t) :: xgcd_i4
        end function

        subroutine find_scalar_integral_supplied(n, get_element, context, eps, max_den, &
            max_scalar, found, scalar, skip_marked, selected_only) &
            bind(c, name="zktarn_find_scalar_integral")
            import :: c_double, c_int32_t, c_int64_t, element_supplier
            integer(c_int32_t), value :: n
            procedure(element_supplier) :: get_element
            type(*), intent(inout), optional :: context
            real(c_double), value :: eps, max_den, max_scalar
            integer(c_int64_t), intent(out) :: found
            real(c_double), intent(out) :: scalar
            integer(c_int64_t), intent(in), optional :: skip_marked, selected_only
        end subroutine
    end interface
    public :: fractional, epsilon_is_int_scalar, epsilon_is_int, epsilon_fractionality
    public :: epsilon_floor, epsilon_ceiling, is_even_real, is_even_int
    public :: xcopy_i1, xcopy_i4, xcopy_r8, xzero_i4, xzero_r8
    public :: get_rational_rep, xgcd_r8, xgcd_i4

    interface xcopy
        procedure :: xcopy_i1, xcopy_i4, xcopy_r8
    end interface
    interface xzero
        procedure :: xzero_i4, xzero_r8
    end interface
    interface xgcd
        procedure :: xgcd_r8, xgcd_i4
    end interface
    public :: xcopy, xzero, xgcd

    !> The elements come from a procedure of the caller, or are those of an array.
    interface find_scalar_integral
        procedure :: find_scalar_integral_supplied
        module procedure find_scalar_integral_array
    end interface
    public :: find_scalar_integral

    !> The arrays whose elements find_scalar_integral reads; marks and selection may be absent.
    type :: plain_set
        real(c_double), pointer :: values(:) => null()
        integer(flag_kind), pointer :: marked(:) => null()
        integer(flag_kind), pointer :: selected(:) => null()
    end type

contains

    !> Skips elements with a true mark and, if a selection is present, elements not selected.
    subroutine find_scalar_integral_array(values, eps, max_den, max_scalar, found, scalar, marked, &
        selected)
        real(c_double), intent(in), target :: values(:)
        real(c_double), intent(in) :: eps, max_den, max_scalar
        integer(flag_kind), intent(out) :: found
        real(c_double), intent(out) :: scalar
        integer(flag_kind), intent(in), target, optional :: marked(:), selected(:)
        type(plain_set) :: set
        set%values => values
        if (present(marked)) set%marked => marked
        if (present(selected)) set%selected => selected
        call find_scalar_integral_supplied(size(values, kind=c_int32_t), supply_plain, set, eps, &
            max_den, max_scalar, found, scalar, merge(1_flag_kind, 0_flag_kind, present(marked)), &
            merge(1_flag_kind, 0_flag_kind, present(selected)))
    end subroutine

    subroutine supply_plain(index, value, marked, selected, context) bind(c)
        integer(c_int32_t), value :: index
        real(c_double), intent(out) :: value
        integer(c_int64_t), intent(out) :: marked, selected
        type(c_ptr), value :: context
        type(plain_set), pointer :: set
        call c_f_pointer(context, set)
        value = set%values(index)
        marked = 0
        if (associated(set%marked)) marked = set%marked(index)
        selected = 1
        if (associated(set%selected)) selected = set%selected(index)
    end subroutine
end module
