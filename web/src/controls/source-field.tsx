import type { ComponentType } from 'preact'
import { useEffect, useLayoutEffect, useRef, useState } from 'preact/hooks'
import { messages } from '../i18n'
import type { ControlModel } from '../model/form'
import { visibleText } from '../model/visible-text'
import { Icon, Spinner } from '../parts/icon'
import type { SourceEditor } from '../source/editor'
import type { Mark } from '../wire/protocol'
import { Field, nameOf } from './field'

const none: readonly Mark[] = []
const longestText = 500
const longestName = 80

function Marks({ marks, onChoose }: { marks: readonly Mark[]; onChoose: (index: number) => void }) {
  const m = messages.value
  return (
    <div class="marks" role="status">
      {marks.length > 0 && (
        <>
          <p class="marks-head">
            <Icon name="critical" />
            {m.marks(marks.length)}
          </p>
          <ul class="marks-list">
            {marks.map((mark, index) => {
              const place = m.markPlace(visibleText(mark.name, longestName), mark.line, mark.column)
              const told = (
                <>
                  <span class="mark-place">{place}</span>
                  <span class="mark-text">{visibleText(mark.text, longestText)}</span>
                </>
              )
              return (
                <li key={index}>
                  {mark.elsewhere || mark.line < 1 ? (
                    <span class="mark">{told}</span>
                  ) : (
                    <button type="button" class="mark" onClick={() => onChoose(index)}>
                      {told}
                    </button>
                  )}
                </li>
              )
            })}
          </ul>
        </>
      )}
    </div>
  )
}

interface Props {
  control: ControlModel
  /** What takes the place of the editor when it cannot be loaded. */
  plain: ComponentType<{ control: ControlModel }>
}

/** A text field for source text. The editor comes with a file of its own, when the first such field is shown. */
export function SourceField({ control, plain: Plain }: Props) {
  const shown = control.shown.value
  const text = control.text.value
  const marks = shown.marks ?? none
  const m = messages.value
  const name = nameOf(control, shown)
  const host = useRef<HTMLDivElement>(null)
  const [editor, setEditor] = useState<SourceEditor | null>(null)
  const [failed, setFailed] = useState(false)

  useEffect(() => {
    let left = false
    let made: SourceEditor | null = null
    const begin = async (): Promise<void> => {
      const { SourceEditor } = await import('../source/editor')
      if (left || !host.current) return
      made = new SourceEditor(host.current, typed => control.type(typed))
      setEditor(made)
    }
    begin().catch(() => setFailed(true))
    return () => {
      left = true
      made?.dispose()
    }
  }, [control])
  useLayoutEffect(() => {
    editor?.word({ name, description: [shown.toolTip, m.sourceKeys].filter(Boolean).join(' '), phrases: m.sourcePhrases })
  }, [editor, name, shown.toolTip, m])
  useLayoutEffect(() => editor?.enable(shown.enabled), [editor, shown.enabled])
  useLayoutEffect(() => editor?.put(text), [editor, text])
  useLayoutEffect(() => editor?.mark(marks), [editor, marks])

  if (failed) return <Plain control={control} />
  return (
    <Field control={control} shown={shown} class="source-field" aside={<span class="source-keys">{m.sourceKeys}</span>}>
      {/* The tool tip belongs to the label: over the text it would be in the way. */}
      <div ref={host} id={control.id} class="source-host" data-tip="">
        {!editor && (
          <p class="source-loading">
            <Spinner /> {m.loading}
          </p>
        )}
      </div>
      <Marks marks={marks} onChoose={index => editor?.goTo(index)} />
    </Field>
  )
}
