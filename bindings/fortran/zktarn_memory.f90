!> Typed arrays, and raw blocks, in the host's memory.
module zktarn_memory
    use, intrinsic :: iso_c_binding
    use zktarn_types
    implicit none
    private

    interface
        function allocmem_l4_1d_array(array, n) bind(c, name="zktarn_allocmem_l4_1d_array")
            import :: c_int64_t, l4_1d_array
            type(l4_1d_array), intent(inout) :: array
            integer(c_int64_t), value :: n
            integer(c_int64_t) :: allocmem_l4_1d_array
        end function

        function allocmem_i8_1d_array(array, n) bind(c, name="zktarn_allocmem_i8_1d_array")
            import :: c_int64_t, i8_1d_array
            type(i8_1d_array), intent(inout) :: array
            integer(c_int64_t), value :: n
            integer(c_int64_t) :: allocmem_i8_1d_array
        end function

        function allocmem_i4_1d_array(array, n) bind(c, name="zktarn_allocmem_i4_1d_array")
            import :: c_int64_t, i4_1d_array
            type(i4_1d_array), intent(inout) :: array
            integer(c_int64_t), value :: n
            integer(c_int64_t) :: allocmem_i4_1d_array
        end function

        function allocmem_i2_1d_array(array, n) bind(c, name="zktarn_allocmem_i2_1d_array")
            import :: c_int64_t, i2_1d_array
            type(i2_1d_array), intent(inout) :: array
            integer(c_int64_t), value :: n
            integer(c_int64_t) :: allocmem_i2_1d_array
        end function

        function allocmem_i1_1d_array(array, n) bind(c, name="zktarn_allocmem_i1_1d_array")
            import :: c_int64_t, i1_1d_array
            type(i1_1d_array), intent(inout) :: array
            integer(c_int64_t), value :: n
            integer(c_int64_t) :: allocmem_i1_1d_array
        end function

        function allocmem_r8_1d_array(array, n) bind(c, name="zktarn_allocmem_r8_1d_array")
            import :: c_int64_t, r8_1d_array
            type(r8_1d_array), intent(inout) :: array
            integer(c_int64_t), value :: n
            integer(c_int64_t) :: allocmem_r8_1d_array
        end function

        function allocmem_i4_2d_array(array, rows, columns) &
            bind(c, name="zktarn_allocmem_i4_2d_array")
            import :: c_int64_t, i4_2d_array
            type(i4_2d_array), intent(inout) :: array
            integer(c_int64_t), value :: rows, columns
            integer(c_int64_t) :: allocmem_i4_2d_array
        end function

        function allocmem_r8_2d_array(array, rows, columns) &
            bind(c, name="zktarn_allocmem_r8_2d_array")
            import :: c_int64_t, r8_2d_array
            type(r8_2d_array), intent(inout) :: array
            integer(c_int64_t), value :: rows, columns
            integer(c_int64_t) :: allocmem_r8_2d_array
        end function

        subroutine freemem_l4_1d_array(array) bind(c, name="zktarn_freemem_l4_1d_array")
            import :: l4_1d_array
            type(l4_1d_array), intent(inout) :: array
        end subroutine

        subroutine freemem_i8_1d_array(array) bind(c, name="zktarn_freemem_i8_1d_array")
            import :: i8_1d_array
            type(i8_1d_array), intent(inout) :: array
        end subroutine

        subroutine freemem_i4_1d_array(array) bind(c, name="zktarn_freemem_i4_1d_array")
            import :: i4_1d_array
            type(i4_1d_array), intent(inout) :: array
        end subroutine

        subroutine freemem_i2_1d_array(array) bind(c, name="zktarn_freemem_i2_1d_array")
            import :: i2_1d_array
            type(i2_1d_array), intent(inout) :: array
        end subroutine

        subroutine freemem_i1_1d_array(array) bind(c, name="zktarn_freemem_i1_1d_array")
            import :: i1_1d_array
            type(i1_1d_array), intent(inout) :: array
        end subroutine

        subroutine freemem_r8_1d_array(array) bind(c, name="zktarn_freemem_r8_1d_array")
            import :: r8_1d_array
            type(r8_1d_array), intent(inout) :: array
        end subroutine

        subroutine freemem_i4_2d_array(array) bind(c, name="zktarn_freemem_i4_2d_array")
            import :: i4_2d_array
            type(i4_2d_array), intent(inout) :: array
        end subroutine

        subroutine freemem_r8_2d_array(array) bind(c, name="zktarn_freemem_r8_2d_array")
            import :: r8_2d_array
            type(r8_2d_array), intent(inout) :: array
        end subroutine

        function mallocate(nbytes) bind(c, name="zktarn_mallocate")
            import :: c_int64_t, c_ptr
            integer(c_int64_t), value :: nbytes
            type(c_ptr) :: mallocate
        end function

        subroutine mdeallocate(address) bind(c, name="zktarn_mdeallocate")
            import :: c_ptr
            type(c_ptr), value :: address
        end subroutine
    end interface
    public :: mallocate, mdeallocate

    public :: allocmem_l4_1d_array, allocmem_i8_1d_array, allocmem_i4_1d_array
    public :: allocmem_i2_1d_array, allocmem_i1_1d_array, allocmem_r8_1d_array
    public :: allocmem_i4_2d_array, allocmem_r8_2d_array
    public :: freemem_l4_1d_array, freemem_i8_1d_array, freemem_i4_1d_array
    public :: freemem_i2_1d_array, freemem_i1_1d_array, freemem_r8_1d_array
    public :: freemem_i4_2d_array, freemem_r8_2d_array

    !> The extents are integers of 32 or of 64 bits.
    interface allocmem
        procedure :: allocmem_l4_1d_array
        procedure :: allocmem_i8_1d_array
        procedure :: allocmem_i4_1d_array
        procedure :: allocmem_i2_1d_array
        procedure :: allocmem_i1_1d_array
        procedure :: allocmem_r8_1d_array
        procedure :: allocmem_i4_2d_array
        procedure :: allocmem_r8_2d_array
        module procedure allocmem_l4_1d_array_short
        module procedure allocmem_i8_1d_array_short
        module procedure allocmem_i4_1d_array_short
        module procedure allocmem_i2_1d_array_short
        module procedure allocmem_i1_1d_array_short
        module procedure allocmem_r8_1d_array_short
        module procedure allocmem_i4_2d_array_short
        module procedure allocmem_r8_2d_array_short
    end interface
    public :: allocmem

    interface freemem
        procedure :: freemem_l4_1d_array
        procedure :: freemem_i8_1d_array
        procedure :: freemem_i4_1d_array
        procedure :: freemem_i2_1d_array
        procedure :: freemem_i1_1d_array
        procedure :: freemem_r8_1d_array
        procedure :: freemem_i4_2d_array
        procedure :: freemem_r8_2d_array
    end interface
    public :: freemem

    !> The elements of an array, lower bounds 1; a disassociated pointer while the array is absent.
    !> The pointer is dangling once the array is released.
    interface elements
        module procedure elements_l4_1d_array
        module procedure elements_i8_1d_array
        module procedure elements_i4_1d_array
        module procedure elements_i2_1d_array
        module procedure elements_i1_1d_array
        module procedure elements_r8_1d_array
        module procedure elements_i4_2d_array
        module procedure elements_r8_2d_array
    end interface
    public :: elements

contains

    function elements_l4_1d_array(array) result(pointer_to)
        type(l4_1d_array), intent(in) :: array
        integer(c_int32_t), pointer, contiguous :: pointer_to(:)
        pointer_to => null()
        if (c_associated(array%data)) call c_f_pointer(array%data, pointer_to, array%extent)
    end function

    function elements_i8_1d_array(array) result(pointer_to)
        type(i8_1d_array), intent(in) :: array
        integer(c_int64_t), pointer, contiguous :: pointer_to(:)
        pointer_to => null()
        if (c_associated(array%data)) call c_f_pointer(array%data, pointer_to, array%extent)
    end function

    function elements_i4_1d_array(array) result(pointer_to)
        type(i4_1d_array), intent(in) :: array
        integer(c_int32_t), pointer, contiguous :: pointer_to(:)
        pointer_to => null()
        if (c_associated(array%data)) call c_f_pointer(array%data, pointer_to, array%extent)
    end function

    function elements_i2_1d_array(array) result(pointer_to)
        type(i2_1d_array), intent(in) :: array
        integer(c_int16_t), pointer, contiguous :: pointer_to(:)
        pointer_to => null()
        if (c_associated(array%data)) call c_f_pointer(array%data, pointer_to, array%extent)
    end function

    function elements_i1_1d_array(array) result(pointer_to)
        type(i1_1d_array), intent(in) :: array
        integer(c_int8_t), pointer, contiguous :: pointer_to(:)
        pointer_to => null()
        if (c_associated(array%data)) call c_f_pointer(array%data, pointer_to, array%extent)
    end function

    function elements_r8_1d_array(array) result(pointer_to)
        type(r8_1d_array), intent(in) :: array
        real(c_double), pointer, contiguous :: pointer_to(:)
        pointer_to => null()
        if (c_associated(array%data)) call c_f_pointer(array%data, pointer_to, array%extent)
    end function

    function elements_i4_2d_array(array) result(pointer_to)
        type(i4_2d_array), intent(in) :: array
        integer(c_int32_t), pointer, contiguous :: pointer_to(:, :)
        pointer_to => null()
        if (c_associated(array%data)) call c_f_pointer(array%data, pointer_to, array%extent)
    end function

    function elements_r8_2d_array(array) result(pointer_to)
        type(r8_2d_array), intent(in) :: array
        real(c_double), pointer, contiguous :: pointer_to(:, :)
        pointer_to => null()
        if (c_associated(array%data)) call c_f_pointer(array%data, pointer_to, array%extent)
    end function

    function allocmem_l4_1d_array_short(array, n) result(made)
        type(l4_1d_array), intent(inout) :: array
        integer(c_int32_t), intent(in) :: n
        integer(flag_kind) :: made
        made = allocmem_l4_1d_array(array, int(n, c_int64_t))
    end function

    function allocmem_i8_1d_array_short(array, n) result(made)
        type(i8_1d_array), intent(inout) :: array
        integer(c_int32_t), intent(in) :: n
        integer(flag_kind) :: made
        made = allocmem_i8_1d_array(array, int(n, c_int64_t))
    end function

    function allocmem_i4_1d_array_short(array, n) result(made)
        type(i4_1d_array), intent(inout) :: array
        integer(c_int32_t), intent(in) :: n
        integer(flag_kind) :: made
        made = allocmem_i4_1d_array(array, int(n, c_int64_t))
    end function

    function allocmem_i2_1d_array_short(array, n) result(made)
        type(i2_1d_array), intent(inout) :: array
        integer(c_int32_t), intent(in) :: n
        integer(flag_kind) :: made
        made = allocmem_i2_1d_array(array, int(n, c_int64_t))
    end function

    function allocmem_i1_1d_array_short(array, n) result(made)
        type(i1_1d_array), intent(inout) :: array
        integer(c_int32_t), intent(in) :: n
        integer(flag_kind) :: made
        made = allocmem_i1_1d_array(array, int(n, c_int64_t))
    end function

    function allocmem_r8_1d_array_short(array, n) result(made)
        type(r8_1d_array), intent(inout) :: array
        integer(c_int32_t), intent(in) :: n
        integer(flag_kind) :: made
        made = allocmem_r8_1d_array(array, int(n, c_int64_t))
    end function

    function allocmem_i4_2d_array_short(array, rows, columns) result(made)
        type(i4_2d_array), intent(inout) :: array
        integer(c_int32_t), intent(in) :: rows, columns
        integer(flag_kind) :: made
        made = allocmem_i4_2d_array(array, int(rows, c_int64_t), int(columns, c_int64_t))
    end function

    function allocmem_r8_2d_array_short(array, rows, columns) result(made)
        type(r8_2d_array), intent(inout) :: array
        integer(c_int32_t), intent(in) :: rows, columns
        integer(flag_kind) :: made
        made = allocmem_r8_2d_array(array, int(rows, c_int64_t), int(columns, c_int64_t))
    end function
end module
