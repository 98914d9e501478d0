!> The bridge to the host: structs, the output function, the console, interrupts; the records of a
!> solve and the values in their slots.
module zktarn_callbacks
    use, intrinsic :: iso_c_binding
    use zktarn_types
    implicit none
    private

    ! assert_mod

    interface
        subroutine tarnassert(condition) bind(c, name="zktarn_tarnassert")
            import :: c_int64_t
            integer(c_int64_t), value :: condition
        end subroutine
    end interface
    public :: tarnassert

    ! callbacks_type_util
    ! Each works on one record or on a contiguous array of records.

    interface cbstatusdatainitialise
        module procedure cbstatusdatainitialise_one, cbstatusdatainitialise_many
    end interface
    public :: cbstatusdatainitialise

    interface cbdatainitialise
        module procedure cbdatainitialise_one, cbdatainitialise_many
    end interface
    public :: cbdatainitialise

    interface cbdatalistinitialise
        module procedure cbdatalistinitialise_one, cbdatalistinitialise_many
    end interface
    public :: cbdatalistinitialise

    interface cbdatalistcopy
        module procedure cbdatalistcopy_one, cbdatalistcopy_many
    end interface
    public :: cbdatalistcopy

    interface cbdatalistfinalise
        module procedure cbdatalistfinalise_one, cbdatalistfinalise_many
    end interface
    public :: cbdatalistfinalise

    ! callbacks_util

    public :: cbinit, cbfree, qvinitcbarray, qvfreecbarray, addrealscalartoqvstruct
    public :: addrealvectoqvstruct, cbprintdisplay, lowercasee

    interface
        subroutine qvcalloutputfcn(structure, stop, status, ctrlc) &
            bind(c, name="zktarn_qvcalloutputfcn")
            import :: c_int32_t, c_int64_t
            integer(c_int64_t), value :: structure
            integer(c_int64_t), intent(out) :: stop
            integer(c_int32_t), value :: status, ctrlc
        end subroutine

        function cbhasinterrupt(status, ctrlc) bind(c, name="zktarn_cbhasinterrupt")
            import :: c_int32_t, c_int64_t
            integer(c_int32_t), value :: status, ctrlc
            integer(c_int64_t) :: cbhasinterrupt
        end function

        function cbstopfromoutputfcn(status) bind(c, name="zktarn_cbstopfromoutputfcn")
            import :: c_int32_t, c_int64_t
            integer(c_int32_t), value :: status
            integer(c_int64_t) :: cbstopfromoutputfcn
        end function

        function cbhasoutputfcn(indicator) bind(c, name="zktarn_cbhasoutputfcn")
            import :: c_int32_t, c_int64_t
            integer(c_int32_t), value :: indicator
            integer(c_int64_t) :: cbhasoutputfcn
        end function

        function cbisdisplayoff(display) bind(c, name="zktarn_cbisdisplayoff")
            import :: c_int32_t, c_int64_t
            integer(c_int32_t), value :: display
            integer(c_int64_t) :: cbisdisplayoff
        end function

        function cbisdisplayfinal(display) bind(c, name="zktarn_cbisdisplayfinal")
            import :: c_int32_t, c_int64_t
            integer(c_int32_t), value :: display
            integer(c_int64_t) :: cbisdisplayfinal
        end function

        function cbisctrlcon(ctrlc) bind(c, name="zktarn_cbisctrlcon")
            import :: c_int32_t, c_int64_t
            integer(c_int32_t), value :: ctrlc
            integer(c_int64_t) :: cbisctrlcon
        end function

    end interface
    public :: qvcalloutputfcn, cbhasinterrupt, cbstopfromoutputfcn, cbhasoutputfcn
    public :: cbisdisplayoff, cbisdisplayfinal, cbisctrlcon

    ! Additional procedures

    interface
        !> Stores a value of n bytes in the slot of `list`; see zktarn_util.h. `value` may be absent
        !> when n is 0, and each procedure may be absent. The context must outlive every copy of the
        !> record, so it is an address: c_loc of a variable with the attribute target, or
        !> c_null_ptr.
        function store_value(list, value, n, copy, destroy, context) &
            bind(c, name="zktarn_store_value")
            import :: c_int64_t, c_ptr, c_size_t, cbdatalist, value_copy, value_destroy
            type(cbdatalist), intent(inout) :: list
            type(*), intent(in), optional :: value
            integer(c_size_t), value :: n
            procedure(value_copy), optional :: copy
            procedure(value_destroy), optional :: destroy
            type(c_ptr), value :: context
            integer(c_int64_t) :: store_value
        end function

        !> The address of the value that store_value stored; a null address when there is none.
        function stored_value(list, n) bind(c, name="zktarn_stored_value")
            import :: c_ptr, c_size_t, cbdatalist
            type(cbdatalist), intent(in) :: list
            integer(c_size_t), intent(out), optional :: n
            type(c_ptr) :: stored_value
        end function
    end interface
    public :: store_value, stored_value

    ! Called by the module procedures

    interface
        subroutine c_cbstatusdatainitialise(first, count) &
            bind(c, name="zktarn_cbstatusdatainitialise")
            import :: c_int32_t, c_ptr
            type(c_ptr), value :: first
            integer(c_int32_t), value :: count
        end subroutine

        subroutine c_cbdatainitialise(first, count) bind(c, name="zktarn_cbdatainitialise")
            import :: c_int32_t, c_ptr
            type(c_ptr), value :: first
            integer(c_int32_t), value :: count
        end subroutine

        subroutine c_cbdatalistinitialise(first, count) bind(c, name="zktarn_cbdatalistinitialise")
            import :: c_int32_t, c_ptr
            type(c_ptr), value :: first
            integer(c_int32_t), value :: count
        end subroutine

        subroutine c_cbdatalistcopy(first, count) bind(c, name="zktarn_cbdatalistcopy")
            import :: c_int32_t, c_ptr
            type(c_ptr), value :: first
            integer(c_int32_t), value :: count
        end subroutine

        subroutine c_cbdatalistfinalise(first, count) bind(c, name="zktarn_cbdatalistfinalise")
            import :: c_int32_t, c_ptr
            type(c_ptr), value :: first
            integer(c_int32_t), value :: count
        end subroutine

        subroutine c_cbinit(cb) bind(c, name="zktarn_cbinit")
            import :: c_ptr
            type(c_ptr), intent(out) :: cb
        end subroutine

        subroutine c_cbfree(cb) bind(c, name="zktarn_cbfree")
            import :: c_ptr
            type(c_ptr), intent(inout) :: cb
        end subroutine

        function c_qvinitcbarray(phase, phase_length) bind(c, name="zktarn_qvinitcbarray")
            import :: c_char, c_int64_t, c_size_t
            character(kind=c_char), intent(in) :: phase(*)
            integer(c_size_t), value :: phase_length
            integer(c_int64_t) :: c_qvinitcbarray
        end function

        !> Destroys a struct of qvinitcbarray with its fields. The handle may be 0, and is 0
        !> afterwards.
        subroutine qvfreecbarray(structure) bind(c, name="zktarn_qvfreecbarray")
            import :: c_int64_t
            integer(c_int64_t), intent(inout) :: structure
        end subroutine

        subroutine c_addrealscalartoqvstruct(structure, name, name_length, value) &
            bind(c, name="zktarn_addrealscalartoqvstruct")
            import :: c_char, c_double, c_int64_t, c_size_t
            integer(c_int64_t), value :: structure
            character(kind=c_char), intent(in) :: name(*)
            integer(c_size_t), value :: name_length
            real(c_double), value :: value
        end subroutine

        subroutine c_addrealvectoqvstruct(structure, name, name_length, values, n) &
            bind(c, name="zktarn_addrealvectoqvstruct")
            import :: c_char, c_double, c_int64_t, c_size_t
            integer(c_int64_t), value :: structure
            character(kind=c_char), intent(in) :: name(*)
            integer(c_size_t), value :: name_length
            real(c_double), intent(in) :: values(*)
            integer(c_int64_t), value :: n
        end subroutine

        subroutine c_cbprintdisplay(status, ctrlc, display, line, line_length) &
            bind(c, name="zktarn_cbprintdisplay")
            import :: c_char, c_int32_t, c_size_t
            integer(c_int32_t), value :: status, ctrlc, display
            character(kind=c_char), intent(in) :: line(*)
            integer(c_size_t), value :: line_length
        end subroutine

        subroutine c_lowercasee(text, text_length) bind(c, name="zktarn_lowercasee")
            import :: c_char, c_size_t
            character(kind=c_char), intent(inout) :: text(*)
            integer(c_size_t), value :: text_length
        end subroutine
    end interface

contains

    subroutine cbstatusdatainitialise_one(record)
        type(cbstatusdata), intent(inout), target :: record
        call c_cbstatusdatainitialise(c_loc(record), 1_c_int32_t)
    end subroutine

    subroutine cbstatusdatainitialise_many(records)
        type(cbstatusdata), intent(inout), target, contiguous :: records(:)
        if (size(records) < 1) return
        call c_cbstatusdatainitialise(c_loc(records), size(records, kind=c_int32_t))
    end subroutine

    subroutine cbdatainitialise_one(record)
        type(cbdata), intent(inout), target :: record
        call c_cbdatainitialise(c_loc(record), 1_c_int32_t)
    end subroutine

    subroutine cbdatainitialise_many(records)
        type(cbdata), intent(inout), target, contiguous :: records(:)
        if (size(records) < 1) return
        call c_cbdatainitialise(c_loc(records), size(records, kind=c_int32_t))
    end subroutine

    subroutine cbdatalistinitialise_one(record)
        type(cbdatalist), intent(inout), target :: record
        call c_cbdatalistinitialise(c_loc(record), 1_c_int32_t)
    end subroutine

    subroutine cbdatalistinitialise_many(records)
        type(cbdatalist), intent(inout), target, contiguous :: records(:)
        if (size(records) < 1) return
        call c_cbdatalistinitialise(c_loc(records), size(records, kind=c_int32_t))
    end subroutine

    subroutine cbdatalistcopy_one(record)
        type(cbdatalist), intent(inout), target :: record
        call c_cbdatalistcopy(c_loc(record), 1_c_int32_t)
    end subroutine

    subroutine cbdatalistcopy_many(records)
        type(cbdatalist), intent(inout), target, contiguous :: records(:)
        if (size(records) < 1) return
        call c_cbdatalistcopy(c_loc(records), size(records, kind=c_int32_t))
    end subroutine

    subroutine cbdatalistfinalise_one(record)
        type(cbdatalist), intent(inout), target :: record
        call c_cbdatalistfinalise(c_loc(record), 1_c_int32_t)
    end subroutine

    subroutine cbdatalistfinalise_many(records)
        type(cbdatalist), intent(inout), target, contiguous :: records(:)
        if (size(records) < 1) return
        call c_cbdatalistfinalise(c_loc(records), size(records, kind=c_int32_t))
    end subroutine

    !> If memory is missing, `cb` is disassociated. cbfree releases the record.
    subroutine cbinit(cb)
        type(cbdata), pointer, intent(out) :: cb
        type(c_ptr) :: address
        call c_cbinit(address)
        cb => null()
        if (c_associated(address)) call c_f_pointer(address, cb)
    end subroutine

    !> Releases a record of cbinit. `cb` may be disassociated, and always is afterwards.
    subroutine cbfree(cb)
        type(cbdata), pointer, intent(inout) :: cb
        type(c_ptr) :: address
        if (.not. associated(cb)) return
        address = c_loc(cb)
        call c_cbfree(address)
        cb => null()
    end subroutine

    !> Returns 0 if the host cannot make the struct. qvfreecbarray destroys it.
    function qvinitcbarray(phase) result(structure)
        character(*), intent(in) :: phase
        integer(c_int64_t) :: structure
        structure = c_qvinitcbarray(phase, len(phase, kind=c_size_t))
    end function

    subroutine addrealscalartoqvstruct(structure, name, value)
        integer(c_int64_t), intent(in) :: structure
        character(*), intent(in) :: name
        real(c_double), intent(in) :: value
        call c_addrealscalartoqvstruct(structure, name, len(name, kind=c_size_t), value)
    end subroutine

    !> Passes all elements of `values`.
    subroutine addrealvectoqvstruct(structure, name, values)
        integer(c_int64_t), intent(in) :: structure
        character(*), intent(in) :: name
        real(c_double), intent(in), contiguous :: values(:)
        call c_addrealvectoqvstruct(structure, name, len(name, kind=c_size_t), values, &
            size(values, kind=c_int64_t))
    end subroutine

    subroutine cbprintdisplay(status, ctrlc, display, line)
        integer(c_int32_t), intent(in) :: status, ctrlc, display
        character(*), intent(in) :: line
        call c_cbprintdisplay(status, ctrlc, display, line, len(line, kind=c_size_t))
    end subroutine

    subroutine lowercasee(text)
        character(*), intent(inout) :: text
        call c_lowercasee(text, len(text, kind=c_size_t))
    end subroutine
end module
