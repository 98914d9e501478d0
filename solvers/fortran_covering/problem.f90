!> A 0-1 program: minimize costs * x subject to rows >= right-hand sides, x binary.
!>
!> In a file, one line a statement, `#` begins a comment:
!>
!>     variables 3
!>     minimize 4 3 -2
!>     row 1:2 3:1.5 >= 2
module problem
    use, intrinsic :: iso_c_binding, only: dp => c_double
    use zktarn_util
    implicit none
    private
    public :: program_01, constraint, read_program, free_program

    !> The row of a constraint, in list mode.
    type :: constraint
        type(vector), pointer :: row => null()
        real(dp) :: rhs = 0
    end type

    type :: program_01
        integer :: n = 0
        real(dp), allocatable :: costs(:)
        type(constraint), allocatable :: constraints(:)
    end type

contains

    !> Reads a file. On failure `message` gives the reason, and there is nothing to release.
    subroutine read_program(path, read_in, message)
        character(*), intent(in) :: path
        type(program_01), intent(out) :: read_in
        character(:), allocatable, intent(out) :: message
        character(:), allocatable :: line
        character(20) :: number
        integer :: unit, status, count
        allocate (read_in%constraints(0))
        message = ''
        open (newunit=unit, file=path, status='old', action='read', iostat=status)
        if (status /= 0) then
            message = "there is no file '"//path//"'"
            return
        end if
        count = 0
        do while (message == '')
            call read_line(unit, line, status)
            if (status /= 0) exit
            count = count + 1
            call read_statement(line, read_in, message)
        end do
        close (unit)
        if (message /= '') then
            write (number, '(i0)') count
            message = path//', line '//trim(number)//': '//message
        else if (.not. allocated(read_in%costs)) then
            message = path//" has no line 'minimize'"
        end if
        if (message /= '') call free_program(read_in)
    end subroutine

    !> A line of any length, without its comment.
    subroutine read_line(unit, line, status)
        integer, intent(in) :: unit
        character(:), allocatable, intent(out) :: line
        integer, intent(out) :: status
        character(256) :: piece
        integer :: length
        line = ''
        do
            read (unit, '(a)', advance='no', size=length, iostat=status) piece
            line = line//piece(:length)
            if (status /= 0) exit
        end do
        if (is_iostat_eor(status) .or. len(line) > 0) status = 0
        if (index(line, '#') > 0) line = line(:index(line, '#') - 1)
    end subroutine

    subroutine read_statement(line, target, message)
        character(*), intent(in) :: line
        type(program_01), intent(inout) :: target
        character(:), allocatable, intent(inout) :: message
        character(:), allocatable :: word, rest
        integer :: status
        rest = line
        call next_word(rest, word)
        select case (word)
        case ('')
        case ('variables')
            if (target%n /= 0) message = "there is a second 'variables'"
            if (message /= '') return
            read (rest, *, iostat=status) target%n
            if (status /= 0 .or. target%n < 1) message = 'the number of variables is not positive'
        case ('minimize')
            if (allocated(target%costs)) message = "there is a second 'minimize'"
            if (message /= '') return
            allocate (target%costs(target%n))
            read (rest, *, iostat=status) target%costs
            if (status /= 0 .or. target%n < 1) message = 'the number of costs is not the number of variables'
        case ('row')
            call read_row(rest, target, message)
        case default
            message = "'"//word//"' is not a statement"
        end select
    end subroutine

    !> Removes the first word of a line and returns it; '' at the end of the line.
    subroutine next_word(line, word)
        character(:), allocatable, intent(inout) :: line
        character(:), allocatable, intent(out) :: word
        integer :: blank
        line = adjustl(line)
        blank = scan(line//' ', ' '//achar(9))
        word = line(:blank - 1)
        line = line(min(blank + 1, len(line) + 1):)
    end subroutine

    subroutine read_row(line, target, message)
        character(:), allocatable, intent(inout) :: line
        type(program_01), intent(inout) :: target
        character(:), allocatable, intent(inout) :: message
        character(:), allocatable :: word
        type(constraint) :: made
        real(dp) :: value
        integer :: j, colon, status, entries
        entries = 0
        if (vector_alloc(made%row, target%n, no_elm=flag_true) == 0) then
            message = 'the host has no memory for a row'
            return
        end if
        ! The program owns it from here on, so a failure below releases it with all others.
        target%constraints = [target%constraints, made]
        do
            call next_word(line, word)
            if (word == '>=') exit
            colon = index(word, ':')
            status = 1
            if (colon > 1) read (word(:colon - 1), *, iostat=status) j
            if (status == 0) read (word(colon + 1:), *, iostat=status) value
            if (status == 0 .and. (j < 1 .or. j > target%n)) status = 1
            if (status /= 0) then
                message = "'"//word//"' is not a variable and its coefficient, as in 2:1.5"
                return
            end if
            call vector_add_nz(made%row, j, value)
            entries = entries + 1
            if (vector_get_nz(made%row) < entries) then
                message = "'"//word//"' repeats a variable"
                return
            end if
        end do
        read (line, *, iostat=status) target%constraints(size(target%constraints))%rhs
        if (status /= 0) message = "the number after '>=' is missing"
    end subroutine

    subroutine free_program(released)
        type(program_01), intent(inout) :: released
        integer :: i
        do i = 1, size(released%constraints)
            call vector_free(released%constraints(i)%row)
        end do
        deallocate (released%constraints)
        allocate (released%constraints(0))
    end subroutine
end module
