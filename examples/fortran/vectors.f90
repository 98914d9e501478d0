!> One row of a constraint matrix, 3 x2 + 2 x5 - x7, as a sparse vector in each of its three modes,
!> on the stand-in host, and the response of a program when the host refuses the memory.
program vectors
    use, intrinsic :: iso_c_binding, only: c_double
    use, intrinsic :: iso_fortran_env, only: error_unit
    use text, only: short
    use zktarn_standin
    use zktarn_util
    implicit none

    integer, parameter :: columns = 8
    type(vector), pointer :: refused
    integer(flag_kind) :: made

    if (command_argument_count() > 0) then
        write (error_unit, '(a)') 'vectors: takes no arguments'
        error stop 2
    end if
    print '(a, i0, a/)', 'The row 3 x2 + 2 x5 - x7 over ', columns, &
        ' columns, in each mode of a vector:'
    print '(a)', 'mode   arrays        members                   x1 x2 x3 x4 x5 x6 x7 x8   entries'
    call show('marks', flag_false, flag_false, 'j is marked: elm(j) = 1')
    call show('list', flag_false, flag_true, 'j is found in the list')
    call show('dense', flag_true, flag_true, 'every j, a zero included')

    call standin_fail_request(2)
    made = vector_alloc(refused, columns)
    print '(/a, i0, a, i0, a/)', 'The host refuses the second array: vector_alloc returns ', made, &
        ', ', size(standin_live_blocks()), ' blocks are left.'
    call vector_free(refused) ! harmless: it is disassociated
    write (*, '(a)', advance='no') standin_memory_report()
    if (size(standin_live_blocks()) > 0) error stop 1

contains

    !> Creates, fills, prints and releases the row in one mode.
    subroutine show(mode, no_ind, no_elm, membership)
        character(*), intent(in) :: mode, membership
        integer(flag_kind), intent(in) :: no_ind, no_elm
        type(vector), pointer :: row
        character(3) :: ind, elm
        character(5) :: name
        character(24) :: members
        integer :: j

        if (vector_alloc(row, columns, no_ind=no_ind, no_elm=no_elm) == 0) then
            write (error_unit, '(a)') 'vectors: the host has no memory for a vector'
            error stop 1
        end if
        if (no_ind /= 0) call zero(elements(row%coef)) ! without a list every coefficient counts
        call vector_add_nz(row, 2, 3.0_c_double)
        call vector_add_nz(row, 5, 2.0_c_double)
        call vector_add_nz(row, 7, -1.0_c_double)

        name = mode
        members = membership
        ind = merge('ind', '   ', no_ind == 0)
        elm = merge('elm', '   ', no_elm == 0)
        print '(20a)', name, '  coef ', ind, ' ', elm, '  ', members, ' ', &
            (padded(short(vector_get_coef(row, j))), j = 1, columns), '  ', entries(row)
        call vector_free(row)
    end subroutine

    subroutine zero(coefficients)
        real(c_double), intent(inout) :: coefficients(:)
        coefficients = 0
    end subroutine

    pure function padded(number) result(three)
        character(*), intent(in) :: number
        character(3) :: three
        three = adjustr(repeat(' ', 3 - len(number))//number)
    end function

    !> The entries, as " index:coefficient": the listed ones, or all of a dense vector.
    function entries(row) result(all)
        type(vector), intent(in) :: row
        character(:), allocatable :: all
        character(12) :: index
        logical :: listed
        integer :: j, k
        all = ''
        listed = associated(elements(row%ind))
        do k = 1, merge(vector_get_nz(row), columns, listed)
            j = k
            if (listed) j = vector_get_ind(row, k)
            write (index, '(i0)') j
            all = all//' '//trim(index)//':'//short(vector_get_coef(row, j))
        end do
    end function
end program
