; Prints "HELLO, WORLD!" into the output register at $8000, one character at a time, then waits.
; The image is a Commodore-style object file, whose first two bytes give the load address; the
; EPROM loads it with cbmfile=hello.prg. Assemble it with   xa -o hello.prg hello.s

        .word $e000             ; the load address, the EPROM's last 8 KB from E000 to FFFF
        * = $e000

reset   ldx #0
next    lda text,x              ; the text ends with a zero byte
        beq done
        sta $8000               ; the output register
        inx
        bne next
done    jmp done

text    .asc "HELLO, WORLD!", 0

        .dsb $fffa-*, $ff       ; the unused EPROM reads as erased
        .word reset             ; NMI
        .word reset             ; reset
        .word reset             ; IRQ and BRK
