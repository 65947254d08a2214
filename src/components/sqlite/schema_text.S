    .section .rodata
    .global zrl_schema_begin
    .global zrl_schema_end
zrl_schema_begin:
    .incbin "schema.sql"
    .byte 0
zrl_schema_end:
    .section .note.GNU-stack, "", %progbits
