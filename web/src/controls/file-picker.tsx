import { useRef } from 'preact/hooks'
import { Icon } from '../parts/icon'
import { firstOf } from './upload'

interface Props {
  class: string
  caption: string
  disabled: boolean
  onChoose: (file: File) => void
}

/** A button that lets people choose a file of their own. */
export function FilePicker({ class: kind, caption, disabled, onChoose }: Props) {
  const picker = useRef<HTMLInputElement>(null)
  return (
    <>
      <button type="button" class={kind} disabled={disabled} onClick={() => picker.current?.click()}>
        <Icon name="upload" />
        {caption}
      </button>
      <input
        ref={picker}
        type="file"
        hidden
        tabIndex={-1}
        onChange={event => {
          firstOf(event.currentTarget.files, onChoose)
          event.currentTarget.value = ''
        }}
      />
    </>
  )
}
