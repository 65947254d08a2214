import { useEffect, useLayoutEffect, useRef } from 'preact/hooks'
import { messages } from '../i18n'
import type { ControlModel } from '../model/form'
import { Field, naming } from './field'

const sendingPause = 80

export function ScrollBar({ control }: { control: ControlModel }) {
  const shown = control.shown.value
  const input = useRef<HTMLInputElement>(null)
  const timer = useRef<ReturnType<typeof setTimeout> | undefined>(undefined)
  const dragged = useRef<number | null>(null)
  const min = shown.min ?? 0
  const max = Math.max(min, shown.max ?? 0)
  const value = shown.value ?? min
  useLayoutEffect(() => {
    if (!input.current || dragged.current !== null) return
    input.current.value = String(value)
    input.current.style.setProperty('--part', `${max > min ? ((value - min) / (max - min)) * 100 : 0}%`)
  })
  useEffect(() => () => clearTimeout(timer.current), [])
  const send = (): void => {
    clearTimeout(timer.current)
    const position = dragged.current
    dragged.current = null
    if (position !== null) control.scroll(position)
  }
  const moved = (event: Event): void => {
    const slider = event.currentTarget as HTMLInputElement
    dragged.current = slider.valueAsNumber
    slider.style.setProperty('--part', `${max > min ? ((slider.valueAsNumber - min) / (max - min)) * 100 : 0}%`)
    clearTimeout(timer.current)
    timer.current = setTimeout(send, sendingPause)
  }
  const place = messages.value.position(value, min, max)
  return (
    <Field control={control} shown={shown} class="scroll-bar" labelFor={control.id} aside={place}>
      <input
        ref={input}
        id={control.id}
        type="range"
        min={min}
        max={max}
        step={1}
        disabled={!shown.enabled || max === min}
        aria-valuetext={place}
        onInput={moved}
        onChange={send}
        {...naming(control, shown)}
      />
    </Field>
  )
}
