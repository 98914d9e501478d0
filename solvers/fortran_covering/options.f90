!> The command line.
module options
    use, intrinsic :: iso_c_binding, only: c_double
    implicit none
    private
    public :: read_options, run_options

    type :: run_options
        character(:), allocatable :: path
        integer :: every = 1000
        logical :: quiet = .false.
        logical :: has_goal = .false.
        real(c_double) :: goal = 0
    end type

    character(*), parameter :: usage = &
        'usage: covering FILE [--every NODES] [--quiet] [--stop-at OBJECTIVE]'

contains

    !> `message` is empty unless the command line is wrong.
    subroutine read_options(chosen, message)
        type(run_options), intent(out) :: chosen
        character(:), allocatable, intent(out) :: message
        character(:), allocatable :: word
        integer :: i, status
        message = ''
        i = 1
        do while (i <= command_argument_count() .and. message == '')
            word = argument(i)
            status = 0
            select case (word)
            case ('--quiet')
                chosen%quiet = .true.
            case ('--every')
                i = i + 1
                word = argument(i)
                read (word, *, iostat=status) chosen%every
                if (chosen%every < 1) status = 1
            case ('--stop-at')
                i = i + 1
                word = argument(i)
                read (word, *, iostat=status) chosen%goal
                chosen%has_goal = .true.
            case default
                if (allocated(chosen%path) .or. index(word, '--') == 1) status = 1
                chosen%path = word
            end select
            if (status /= 0) message = "'"//word//"' is not a valid argument here; "//usage
            i = i + 1
        end do
        if (message == '' .and. .not. allocated(chosen%path)) message = 'no file; '//usage
    end subroutine

    function argument(i) result(text)
        integer, intent(in) :: i
        character(:), allocatable :: text
        integer :: length
        call get_command_argument(i, length=length)
        allocate (character(length) :: text)
        call get_command_argument(i, text)
    end function
end module
