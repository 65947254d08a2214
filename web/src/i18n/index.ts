import { computed, signal } from '@preact/signals'
import type { Language } from '../wire/protocol'
import { de } from './de'
import { en, type Messages } from './en'

export const language = signal<Language>(navigator.language.startsWith('de') ? 'german' : 'english')

export const messages = computed<Messages>(() => (language.value === 'german' ? de : en))
