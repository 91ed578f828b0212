! SPDX-License-Identifier: MIT
! Legacy programs declare routines EXTERNAL and have no module: GNU
! Fortran's names reach them. The text is fixed form and free form.
      PROGRAM EXTERNAL_NAMES_TEST
      IMPLICIT NONE
      INCLUDE 'qwport.inc'
      INTEGER :: FAILURES, SYSTEM_ERROR, KEPT, TIMES(2)
      INTEGER(8) :: COUNT
      REAL(8) :: VALUES(3), KEY
      CHARACTER :: C
      CHARACTER(LEN=40) :: TEXT
      EXTERNAL :: EXIT

      FAILURES = 0
      CALL EXPECT('numbers', FGETC(77, C) == 22 .AND. IERRNO() == 22)
      CALL EXPECT('bits', BIT(1, 2) .AND. .NOT. BIT(0, 2))
      CALL EXPECT('true as -1', PXFISREG(32768) .AND. .NOT. MBLEAD('a'))
      CALL EXPECT('version', FOR_QWPORT_VERSION(TEXT) == 4)
      CALL EXPECT('title', TEXT(1:6) == 'qwport')
      CALL EXPECT('commitqq', .NOT. COMMITQQ(77))
      TEXT = CTIME(TIME())
      CALL EXPECT('ctime', TEXT(20:20) == ' ' .AND. TEXT(25:25) /= ' ')
      TEXT = CLOCK()
      CALL EXPECT('clock', TEXT(3:3) // TEXT(6:6) == '::')
      CALL EXPECT('real results', DFLOATI(-3) == -3 .AND. RTC() > 1E9)
      VALUES = [9D0, 1D0, 5D0]
      KEPT = 3
      CALL SORTQQ(LOC(VALUES), KEPT, 131072)
      KEY = 9
      COUNT = 3
      KEPT = BSEARCHQQ(LOC(KEY), LOC(VALUES), COUNT, 131072)
      CALL EXPECT('sorted', VALUES(2) == 5 .AND. KEPT == 3)
      KEPT = FGETC(77, C)
      CALL ERRSNS(%VAL(0_8), SYSTEM_ERROR, %VAL(0_8), %VAL(0_8), TIMES)
      CALL EXPECT('errsns', SYSTEM_ERROR == 22)
      CALL EXIT(FAILURES)

      CONTAINS

      SUBROUTINE EXPECT(WHAT, HOLDS)
      CHARACTER(LEN=*), INTENT(IN) :: WHAT
      LOGICAL, INTENT(IN) :: HOLDS
      IF (HOLDS) RETURN
      FAILURES = FAILURES + 1
      PRINT *, 'failed: ', WHAT
      END SUBROUTINE EXPECT

      END PROGRAM EXTERNAL_NAMES_TEST
