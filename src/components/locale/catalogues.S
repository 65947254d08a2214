    .section .rodata
    .global zrl_locale_german_begin
    .global zrl_locale_german_end
zrl_locale_german_begin:
    .incbin "german.po"
zrl_locale_german_end:
    .section .note.GNU-stack, "", %progbits
