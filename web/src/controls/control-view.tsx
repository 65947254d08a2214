import type { ComponentType } from 'preact'
import { messages } from '../i18n'
import type { ControlModel } from '../model/form'
import type { Kind } from '../wire/protocol'
import { Button } from './button'
import { ChartView } from './chart'
import { CheckBox, OptionButton } from './choices'
import { ComboBox } from './combo-box'
import { FileList } from './file-list'
import { LinkView } from './link-view'
import { ListBox } from './list-box'
import { ScrollBar } from './scroll-bar'
import { TableView } from './table-view'
import { TextField } from './text-field'

type View = ComponentType<{ control: ControlModel }>

function Label({ control }: { control: ControlModel }) {
  const shown = control.shown.value
  const text = shown.caption ?? shown.text ?? ''
  return (
    <p class="text-label" id={control.id} data-control={control.id} data-tip={shown.toolTip} data-tone={shown.tone} dir="auto">
      {/^[1-9]\d{3,14}$/.test(text) ? messages.value.number(Number(text)) : text}
    </p>
  )
}

/** Frames are drawn by the layout, timers tick on the server. */
const views: Partial<Record<Kind, View>> = {
  Label,
  TextField,
  CheckBox,
  OptionButton,
  Button,
  ListBox,
  ComboBox,
  ScrollBar,
  DriveList: ListBox,
  FolderList: ListBox,
  FileList,
  Table: TableView,
  Link: LinkView,
  Chart: ChartView,
}

export function ControlView({ control }: { control: ControlModel }) {
  const View = views[control.kind]
  return control.visible.value && View ? <View control={control} /> : null
}
