# Completion of coffrelune-console for bash.

_coffrelune_configurations() {
    coffrelune-console configurations 2>/dev/null | sed -E 's/^[* ] //; s/ \(.*//'
}

_coffrelune_console() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command=${COMP_WORDS[1]-} action=${COMP_WORDS[2]-} words=
    COMPREPLY=()
    case $previous in
        --source | --destination | --ajouter | --retirer | --rapport | --empreintes | --ecrire-empreintes)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return
            ;;
        --config)
            local IFS=$'\n'
            mapfile -t COMPREPLY < <(compgen -W "$(_coffrelune_configurations)" -- "$current")
            return
            ;;
        --type)
            words="sauvegarde restauration comparaison"
            ;;
        --jours)
            words="lundi mardi mercredi jeudi vendredi samedi dimanche"
            ;;
        --sous-repertoires)
            words="tous aucun sauf"
            ;;
    esac
    if [[ -z $words ]]; then
        local runs="--config --json --source --destination --journal --progression --rapport
                    --dates-arrondies --help"
        if ((COMP_CWORD == 1)); then
            words="sauvegarder restaurer comparer verifier journal resultats configurations lignes
                   options lecteurs planifier --help --version"
        else
            case $command in
                sauvegarder) words="$runs --ecraser --conserver --confirmer --confirmer-source
                             --ecrire-empreintes --notifier" ;;
                restaurer) words="$runs --ecraser --conserver --confirmer" ;;
                comparer) words="$runs --inverse" ;;
                verifier) words="$runs --inverse --empreintes --ecrire-empreintes" ;;
                journal) words="--config --json --type --help" ;;
                resultats) words="--config --json --alerte --help" ;;
                planifier)
                    words="--config --json --help"
                    ((COMP_CWORD > 2)) || words+=" montrer ajouter retirer"
                    [[ $action != ajouter ]] || words+=" --heure --jours --fenetre"
                    ;;
                lecteurs) words="--json --help" ;;
                configurations)
                    words="--json --help"
                    ((COMP_CWORD > 2)) ||
                        words+=" lister ajouter renommer dupliquer effacer decrire choisir"
                    case $action in
                        effacer) words+=" --confirmer" ;;
                        ajouter) words+=" --description" ;;
                    esac
                    ;;
                lignes)
                    words="--config --json --help"
                    ((COMP_CWORD > 2)) ||
                        words+=" montrer definir vider selectionner deselectionner exclusions"
                    case $action in
                        definir) words+=" --source --destination" ;;
                        vider) words+=" --confirmer" ;;
                        exclusions) words+=" --sous-repertoires --ajouter --retirer --vider" ;;
                    esac
                    ;;
                options)
                    words="--config --json --help"
                    ((COMP_CWORD > 2)) || words+=" montrer definir"
                    [[ $action != definir ]] ||
                        words+=" RecentSeul= DelReadOnly= ContinueOnError= SynchroCopie= AltCopie=
                                CorrectEteOff= SynchroDate= ArbreMode= SignalSonore= DatesArrondies=
                                RepertMax=
                                Confirmation= Modifie= AutoSave= AutoTime="
                    ;;
            esac
        fi
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    [[ ${COMPREPLY[0]-} != *= ]] || compopt -o nospace
}

complete -F _coffrelune_console coffrelune-console
