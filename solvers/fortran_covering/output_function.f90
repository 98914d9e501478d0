!> An output function in the language of the host: stops the solver at a good enough point.
module output_function
    use, intrinsic :: iso_c_binding, only: c_double, c_f_pointer, c_ptr
    use zktarn_standin
    implicit none
    private
    public :: goal, stop_at_goal

    type :: goal
        real(c_double) :: objective = 0
    end type

contains

    subroutine stop_at_goal(input, reply, context) bind(c)
        type(c_ptr), value :: input, reply, context
        type(goal), pointer :: wanted
        real(c_double) :: best
        call c_f_pointer(context, wanted)
        best = standin_scalar(standin_field(input, 'best'))
        call standin_reply(reply, merge(1.0_c_double, 0.0_c_double, best <= wanted%objective))
    end subroutine
end module
