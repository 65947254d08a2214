import { useLayoutEffect, useRef, useState } from 'preact/hooks'
import { messages } from '../i18n'
import { countsOf } from '../model/counts'
import type { ControlModel } from '../model/form'
import { productPath, systemPath } from '../model/product-path'
import { Field, naming } from './field'
import { SourceField } from './source-field'

/** Sets the text of an input only when it differs, and leaves the caret where it stood. */
export function putText(input: HTMLInputElement | HTMLTextAreaElement, text: string): void {
  // A text area turns every line end into one line feed; comparing the raw text would set it again and again.
  const told = input instanceof HTMLTextAreaElement ? text.replace(/\r\n?/g, '\n') : text
  if (input.value === told) return
  const focused = document.activeElement === input
  const { selectionStart, selectionEnd, scrollTop } = input
  input.value = told
  if (!focused) return
  input.setSelectionRange(selectionStart, selectionEnd)
  input.scrollTop = scrollTop
}

/** What stands in the input. A text area has its line ends as line feeds; the console's are CR LF, as in what it stores. */
function textOf(input: HTMLInputElement | HTMLTextAreaElement): string {
  return input instanceof HTMLTextAreaElement ? input.value.replace(/\n/g, '\r\n') : input.value
}

/** The element's types tell the two apart, though its attributes are the same for both. */
export const fieldType = (hidden: boolean): 'text' => (hidden ? 'password' : 'text') as 'text'

/** The counts of a report as bars. One colour and a number at each bar: nothing is told by colour alone. */
function CountsChart({ report, name }: { report: string; name: string }) {
  const counts = countsOf(report)
  if (counts.length === 0) return null
  return (
    <ul class="counts-chart" aria-label={name}>
      {counts.map(({ label, shown, share, begins }) => (
        <li key={label} data-begins={begins ? '' : undefined}>
          <span class="count-label">{label}</span>
          <span class="count-bar">
            <span style={{ width: `${share * 100}%` }} />
          </span>
          <span class="count-number">{/^\d{4,15}$/.test(shown) ? messages.value.number(Number(shown)) : shown}</span>
        </li>
      ))}
    </ul>
  )
}

export function TextField({ control }: { control: ControlModel }) {
  return control.shown.value.source ? <SourceField control={control} plain={PlainField} /> : <PlainField control={control} />
}

function PlainField({ control }: { control: ControlModel }) {
  const shown = control.shown.value
  const text = shown.path ? systemPath(control.text.value) : control.text.value
  const area = useRef<HTMLTextAreaElement>(null)
  const line = useRef<HTMLInputElement>(null)
  const [revealed, setRevealed] = useState(false)
  useLayoutEffect(() => {
    const input = shown.multiLine ? area.current : line.current
    if (input) putText(input, text)
  })
  const common = {
    id: control.id,
    placeholder: shown.placeholder && messages.value.example(shown.placeholder),
    disabled: !shown.enabled,
    spellcheck: false,
    autocomplete: shown.secret ? 'new-password' : 'off',
    autocapitalize: 'off' as const,
    dir: 'auto' as const,
    onFocus: () => (control.typing.value = true),
    onBlur: () => (control.typing.value = false),
    onInput: (event: Event) => {
      const typed = textOf(event.currentTarget as HTMLInputElement | HTMLTextAreaElement)
      control.type(shown.path ? productPath(typed) : typed)
    },
    ...naming(control, shown),
  }
  const fixed = shown.fixedPitch ? ' fixed-pitch' : ''
  return (
    <Field control={control} shown={shown} class={shown.multiLine ? 'text-area' : 'text-field'} labelFor={control.id}>
      {shown.counts && <CountsChart report={text} name={control.form.labelOf(shown)} />}
      {shown.multiLine ? (
        <textarea ref={area} class={`input${fixed}`} rows={6} wrap={shown.fixedPitch ? 'off' : 'soft'} {...common} />
      ) : (
        <span class="input-line">
          <input
            ref={line}
            class={`input${fixed}`}
            type={fieldType(shown.secret === true && !revealed)}
            onKeyDown={event => {
              if (event.key !== 'Enter' || event.isComposing) return
              const adder = control.form.adderOf(control)
              if (adder && control.holdsSomething) adder.click()
            }}
            {...common}
          />
          {shown.secret && (
            <button type="button" class="button quiet small" aria-pressed={revealed} onClick={() => setRevealed(!revealed)}>
              {revealed ? messages.value.hidePassword : messages.value.showPassword}
            </button>
          )}
        </span>
      )}
    </Field>
  )
}
