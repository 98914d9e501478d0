!> Kinds, codes, records and the interfaces of the caller's procedures.
module zktarn_types
    use, intrinsic :: iso_c_binding
    implicit none
    private

    !> The kind of a flag, and its two values.
    integer, parameter, public :: flag_kind = c_int64_t
    integer(flag_kind), parameter, public :: flag_true = 1_flag_kind, flag_false = 0_flag_kind

    !> Codes that the bridge interprets.
    integer(c_int32_t), parameter, public :: stopped_by_output_function = 3
    integer(c_int32_t), parameter, public :: poll_for_interrupts = 1
    integer(c_int32_t), parameter, public :: display_off = 0
    integer(c_int32_t), parameter, public :: display_final = 1

    !> Arrays in the host's memory; `data` is a null address while the array is absent.
    type, bind(c), public :: l4_1d_array
        type(c_ptr) :: data = c_null_ptr
        integer(c_int64_t) :: extent(1) = 0
        integer(c_int64_t) :: lower_bound(1) = 0
    end type

    type, bind(c), public :: i8_1d_array
        type(c_ptr) :: data = c_null_ptr
        integer(c_int64_t) :: extent(1) = 0
        integer(c_int64_t) :: lower_bound(1) = 0
    end type

    type, bind(c), public :: i4_1d_array
        type(c_ptr) :: data = c_null_ptr
        integer(c_int64_t) :: extent(1) = 0
        integer(c_int64_t) :: lower_bound(1) = 0
    end type

    type, bind(c), public :: i2_1d_array
        type(c_ptr) :: data = c_null_ptr
        integer(c_int64_t) :: extent(1) = 0
        integer(c_int64_t) :: lower_bound(1) = 0
    end type

    type, bind(c), public :: i1_1d_array
        type(c_ptr) :: data = c_null_ptr
        integer(c_int64_t) :: extent(1) = 0
        integer(c_int64_t) :: lower_bound(1) = 0
    end type

    type, bind(c), public :: r8_1d_array
        type(c_ptr) :: data = c_null_ptr
        integer(c_int64_t) :: extent(1) = 0
        integer(c_int64_t) :: lower_bound(1) = 0
    end type

    type, bind(c), public :: i4_2d_array
        type(c_ptr) :: data = c_null_ptr
        integer(c_int64_t) :: extent(2) = 0
        integer(c_int64_t) :: lower_bound(2) = 0
    end type

    type, bind(c), public :: r8_2d_array
        type(c_ptr) :: data = c_null_ptr
        integer(c_int64_t) :: extent(2) = 0
        integer(c_int64_t) :: lower_bound(2) = 0
    end type

    !> A sparse vector; the arrays that exist decide its mode.
    type, bind(c), public :: vector
        type(r8_1d_array) :: coef
        type(i4_1d_array) :: ind
        type(i4_1d_array) :: elm
        integer(c_int32_t) :: nz = 0
    end type

    !> A generator of the host; a null address when there is none.
    type, bind(c), public :: rng_state
        type(c_ptr) :: generator = c_null_ptr
    end type

    !> Counters and measures of a solve.
    type, bind(c), public :: cbstatusdata
        integer(c_int32_t) :: status = 0
        integer(c_int32_t) :: phase = 0
        integer(c_int64_t) :: iterations = 0
        integer(c_int64_t) :: nodes = 0
        integer(c_int64_t) :: cuts = 0
        real(c_double) :: objective = 0
        real(c_double) :: bound = 0
        real(c_double) :: seconds = 0
    end type

    !> One element of a report.
    type, bind(c), public :: cbdataelm
        integer(c_int32_t) :: quantity
        integer(c_int32_t) :: index
        real(c_double) :: value
    end type

    !> State of a solve that its callbacks share.
    type, bind(c), public :: cbdata
        integer(c_int32_t) :: nodes_explored = -1
        integer(c_int32_t) :: feasible_points = 0
        integer(c_int32_t) :: node = -1
        integer(c_int32_t) :: parent_node = -1
        integer(c_int32_t) :: depth = -1
        integer(c_int32_t) :: branching_variable = -1
        real(c_double) :: lower_bound = -huge(0.0_c_double)
        real(c_double) :: upper_bound = huge(0.0_c_double)
        real(c_double) :: gap = huge(0.0_c_double)
        integer(c_int32_t) :: incumbent_node = -1
        integer(c_int32_t) :: cuts = 0
        integer(c_int32_t) :: restarts = 0
    end type

    !> Header of the length-parameter block of a value whose size is known only at run time.
    type, bind(c), public :: parameter_block
        integer(c_int64_t) :: owned
        integer(c_int64_t) :: count
        integer(c_int64_t) :: value_size
    end type

    !> The dynamic type of a value in a slot; store_value needs none.
    type, bind(c), public :: value_type
        integer(c_int64_t) :: size = 0
        integer(c_int64_t) :: has_parameters = 0
        type(c_funptr) :: copy = c_null_funptr
        type(c_funptr) :: final = c_null_funptr
        type(c_funptr) :: finalise = c_null_funptr
    end type

    !> An owned value of any type; empty when `value` is a null address.
    type, bind(c), public :: value_slot
        type(c_ptr) :: value = c_null_ptr
        type(c_ptr) :: type = c_null_ptr
        type(c_ptr) :: parameters = c_null_ptr
    end type

    !> A value and two handles of the solver. Assignment copies it bit for bit: cbdatalistcopy then
    !> makes the copy independent, and cbdatalistfinalise releases each of them.
    type, bind(c), public :: cbdatalist
        type(value_slot) :: slot
        integer(c_int64_t) :: first_handle = 0
        integer(c_int64_t) :: second_handle = 0
    end type

    ! Procedures of the caller

    abstract interface
        !> Exchanges the elements at positions a < b and returns 1 when they are out of order;
        !> leaves them and returns 0 otherwise.
        function exchange_procedure(a, b, context) bind(c) result(exchanged)
            import :: c_int32_t, c_int64_t, c_ptr
            integer(c_int32_t), value :: a, b
            type(c_ptr), value :: context
            integer(c_int64_t) :: exchanged
        end function

        !> Supplies element `index`, 1 <= index <= n; the same each time.
        subroutine element_supplier(index, value, marked, selected, context) bind(c)
            import :: c_int32_t, c_int64_t, c_double, c_ptr
            integer(c_int32_t), value :: index
            real(c_double), intent(out) :: value
            integer(c_int64_t), intent(out) :: marked, selected
            type(c_ptr), value :: context
        end subroutine

        !> Makes a value that was just copied bit for bit independent of the original, and returns
        !> 1. If it fails, it releases what it has allocated and returns 0.
        function value_copy(value, context) bind(c) result(copied)
            import :: c_int64_t, c_ptr
            type(c_ptr), value :: value, context
            integer(c_int64_t) :: copied
        end function

        !> Releases what the components of a value own, not its bytes.
        subroutine value_destroy(value, context) bind(c)
            import :: c_ptr
            type(c_ptr), value :: value, context
        end subroutine
    end interface
    public :: exchange_procedure, element_supplier, value_copy, value_destroy

    public :: zktarn_version

    interface
        function c_version() bind(c, name="zktarn_version")
            import :: c_ptr
            type(c_ptr) :: c_version
        end function
    end interface

contains

    !> The version of the library in use, as "major.minor.patch".
    function zktarn_version() result(version)
        character(:), allocatable :: version
        character(kind=c_char), pointer :: characters(:)
        integer :: length
        call c_f_pointer(c_version(), characters, [32])
        length = 0
        do while (characters(length + 1) /= c_null_char)
            length = length + 1
        end do
        allocate (character(length) :: version)
        version = transfer(characters(:length), version)
    end function
end module
